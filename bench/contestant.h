// The operations that are compared, for one library: ours or a peer.
#ifndef BENCH_CONTESTANT_H
#define BENCH_CONTESTANT_H

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bench/document_generator.h"

namespace bench {

// A library read or left something else than it must have. Ends the run with an error.
struct CheckFailed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// `what` and `which` are put together when it failed: a measured loop does not pay for messages.
inline void Check(bool isTrue, std::string_view what, std::string_view which = {}) {
    if (!isTrue) throw CheckFailed(std::string(what) + std::string(which));
}

// What a loop of reads adds up of the values it saw: it costs next to nothing and no wrong value slips
// through unseen, since the sum for the right ones is known.
using Sum = std::uint64_t;
template <class Unit>
Sum SumOf(std::basic_string_view<Unit> text) {
    return text.empty()
               ? 1
               : text.size() * 65599 + static_cast<Sum>(text.back()) * 31 + static_cast<Sum>(text.front());
}
inline Sum SumOf(const char* text) {
    return text == nullptr ? 1 : SumOf(std::string_view(text));
}

// The same document in the forms of the libraries.
struct Source {
    std::string narrowXml;
    std::string wideXml;
    std::string ini;
};

// Holds one document at most. Every function but the first two needs one, and throws CheckFailed when the
// library refuses or does not offer the operation. Names of sections and keys come from queries; the document
// has them unless said otherwise.
class Contestant {
  public:
    Contestant() = default;
    Contestant(const Contestant&) = delete;
    Contestant& operator=(const Contestant&) = delete;
    virtual ~Contestant() = default;

    virtual std::string Name() const = 0;
    // Loads the file of its own format. With `wide` the one with two bytes per character.
    virtual void Load(const Source& source, bool wide) = 0;
    virtual void Release() = 0;
    virtual void Save(const std::string& path, bool wide);

    // The sum over the values, or the sum of the values as numbers.
    virtual Sum ReadStrings(std::span<const Query> queries);
    virtual Sum ReadNumbers(std::span<const Query> queries);
    // Sets existing keys to their queries' values.
    virtual void Update(std::span<const Query> queries);
    // Adds new keys, and the section when there is none.
    virtual void Append(std::span<const Query> queries);
    virtual void Delete(std::span<const Query> queries);
    // Removes every key of a section.
    virtual void Empty(const Query& section);
    // Reads of each entry of a section: name, id, type, value, control, provider, shown name, comment and the
    // value in the presentation data; the sum over all of them.
    virtual Sum Enumerate(const Query& section);
    // The names of all sections, as a host gets them: each section opened, its name read, and closed again. The sum
    // over the names.
    virtual Sum EnumerateSections();
    // How many keys the section has.
    virtual std::size_t Count(const Query& section);
};

std::unique_ptr<Contestant> MakeOurs();
std::unique_ptr<Contestant> MakePugixml();
std::unique_ptr<Contestant> MakeTinyxml2();
std::unique_ptr<Contestant> MakeRapidxml();
std::unique_ptr<Contestant> MakeLibxml2();
std::unique_ptr<Contestant> MakePropertyTree();
std::unique_ptr<Contestant> MakeGKeyFile();
std::unique_ptr<Contestant> MakeSimpleIni();

}  // namespace bench

#endif
