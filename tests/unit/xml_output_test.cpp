#include "mox_xmlApi/xml/xml_output.h"

#include <gtest/gtest.h>
#include <string>

#include "tests/unit/xml_support.h"

namespace mox {
namespace {

using test::Shown;
using test::Wide;

TEST(XmlOutput, NewOneIsEmpty) {
    const XmlOutput out;
    EXPECT_EQ(Shown(out.Text()), "");
    EXPECT_TRUE(out.ForEachChunk([](const wchar16*, std::size_t) { return false; }));
}

TEST(XmlOutput, UnitsTextsAndRunsFollowEachOther) {
    XmlOutput out;
    out.Append(wchar16{'<'});
    out.Append("Var"_w);
    out.Append(3, wchar16{'\t'});
    out.Append(WideView());
    out.Append(0, wchar16{'x'});
    out.Append(wchar16{'>'});
    EXPECT_EQ(Shown(out.Text()), "<Var\\t\\t\\t>");
}

TEST(XmlOutput, NarrowOneKeepsTheLowBytes) {
    NarrowXmlOutput out;
    out.Append(wchar16{0x1E9});
    out.Append(Wide(u"a\u0100\uFF80"));
    out.Append(2, wchar16{0x20AC});
    EXPECT_EQ(out.Text(), std::string("\xE9"
                                      "a\0\x80\xAC\xAC",
                                      6));
}

TEST(XmlOutput, RoomIsWrittenInPlaceAsFarAsItIsUsed) {
    XmlOutput out;
    out.Append("a"_w);
    wchar16* room = out.Reserve(XmlOutput::kMaxReserve);
    room[0] = wchar16{'b'};
    room[1] = wchar16{'c'};
    out.Commit(room + 1);
    out.Append("d"_w);
    EXPECT_EQ(Shown(out.Text()), "abd");
}

// Pieces of all sizes, so that each way to begin a chunk comes up.
template <class Output, class String>
void ExpectManyPiecesWhole() {
    Output out;
    String expected;
    test::Random random(3);
    for (int i = 0; i < 600; ++i) {
        const std::size_t count = random.Below(random.OneIn(5) ? 9000 : 300);
        const auto unit = static_cast<wchar16>('a' + i % 26);
        switch (random.Below(4)) {
            case 0:
                out.Append(count, unit);
                break;
            case 1:
                out.Append(WideString(count, unit));
                break;
            case 2:
                for (std::size_t j = 0; j < count; ++j)
                    out.Append(unit);
                break;
            default: {
                // Most of the room stays unused.
                auto* room = out.Reserve(Output::kMaxReserve);
                const std::size_t used = count % 7;
                for (std::size_t j = 0; j < used; ++j)
                    room[j] = Output::Narrow(unit);
                out.Commit(room + used);
                expected.append(used, Output::Narrow(unit));
                continue;
            }
        }
        expected.append(count, Output::Narrow(unit));
    }
    EXPECT_TRUE(out.Text() == expected);
    EXPECT_GT(expected.size(), 400000U);
}

TEST(XmlOutput, ManyPiecesOfAllSizesAreKeptWhole) {
    ExpectManyPiecesWhole<XmlOutput, WideString>();
    ExpectManyPiecesWhole<NarrowXmlOutput, std::string>();
}

TEST(XmlOutput, ChunksComeInOrderUntilOneIsRefused) {
    XmlOutput out;
    for (int i = 0; i < 100000; ++i)
        out.Append(static_cast<wchar16>('0' + i % 10));
    WideString joined;
    int chunks = 0;
    EXPECT_TRUE(out.ForEachChunk([&](const wchar16* units, std::size_t count) {
        joined.append(units, count);
        ++chunks;
        return true;
    }));
    EXPECT_TRUE(joined == out.Text());
    EXPECT_EQ(joined.size(), 100000U);
    EXPECT_GT(chunks, 2);
    int seen = 0;
    EXPECT_FALSE(out.ForEachChunk([&](const wchar16*, std::size_t) { return ++seen < 2; }));
    EXPECT_EQ(seen, 2);
}

}  // namespace
}  // namespace mox
