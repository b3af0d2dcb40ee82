// Documents by chance. The same seed gives the same documents.
#ifndef MOX_XMLAPI_TESTS_SECOND_OPINION_DIALECT_SUPPORT_H
#define MOX_XMLAPI_TESTS_SECOND_OPINION_DIALECT_SUPPORT_H

#include <cstdint>
#include <string>

#include "tests/unit/xml_support.h"

namespace opinion {

using mox::test::Random;

// How much the random tests do: MOX_OPINION_SEED and MOX_OPINION_COUNT of the environment, or 1 and 2000, under the
// sanitizers 500.
std::uint64_t RandomSeed();
std::uint64_t RandomCount();

// 7-bit text of up to 20 characters. Unless `control` is set, without those below the space that XML has none of.
std::string RandomText(Random& random, bool control);

class RandomDocuments {
  public:
    explicit RandomDocuments(std::uint64_t seed) : random_(seed) {}

    // A document of 7-bit text in the dialect that is XML as well.
    std::string Next();
    // Such a document after a few accidents.
    std::string NextDamaged();

  private:
    std::string Declaration();
    std::string Element(int depth);
    std::string Attributes();
    std::string Comment();
    std::string Text(bool attribute);
    std::string Name();
    std::string Space();

    Random random_;
};

}  // namespace opinion

#endif
