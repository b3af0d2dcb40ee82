#include "bench/contestant.h"

namespace bench {
namespace {

[[noreturn]] void NotOffered(const Contestant& contestant, const char* operation) {
    throw CheckFailed(contestant.Name() + " does not offer: " + operation);
}

}  // namespace

void Contestant::Save(const std::string&, bool) {
    NotOffered(*this, "save");
}
Sum Contestant::ReadStrings(std::span<const Query>) {
    NotOffered(*this, "read strings");
}
Sum Contestant::ReadNumbers(std::span<const Query>) {
    NotOffered(*this, "read numbers");
}
void Contestant::Update(std::span<const Query>) {
    NotOffered(*this, "update");
}
void Contestant::Append(std::span<const Query>) {
    NotOffered(*this, "append");
}
void Contestant::Delete(std::span<const Query>) {
    NotOffered(*this, "delete");
}
void Contestant::Empty(const Query&) {
    NotOffered(*this, "empty");
}
Sum Contestant::Enumerate(const Query&) {
    NotOffered(*this, "enumerate");
}
Sum Contestant::EnumerateSections() {
    NotOffered(*this, "enumerate sections");
}
std::size_t Contestant::Count(const Query&) {
    NotOffered(*this, "count");
}

}  // namespace bench
