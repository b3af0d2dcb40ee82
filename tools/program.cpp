#include "tools/main.h"

int main(int argc, char** argv) {
    return mox::tool::Main(argc, argv);
}
