// What Set and Add write of a host's records, row by row as in docs/file-format.md, "Changing entries".
#include "mox_xmlApi/table/write_plan.h"

#include <gtest/gtest.h>
#include <string_view>

namespace mox::test {
namespace {

constexpr GivenRecords kValueAlone{true, false};
constexpr GivenRecords kUiAlone{false, true};
constexpr GivenRecords kBoth{true, true};
constexpr GivenRecords kNeither{false, false};

// The words of the document for a decision.
std::string_view Words(WritePlan plan, GivenRecords given) {
    if (plan.movesValue) {
        EXPECT_TRUE(plan.writesValue && plan.writesUi && given.value);
        return given.ui ? "both, the value moved" : "the value moved";
    }
    // Only what was given can be written.
    EXPECT_TRUE((given.value || !plan.writesValue) && (given.ui || !plan.writesUi));
    if (plan.writesValue && plan.writesUi) return "both, but not the own value";
    if (plan.writesValue) return "value record";
    return plan.writesUi ? "presentation record" : "nothing";
}

struct Row {
    ValueLocation location;
    std::string_view valueAlone;
    std::string_view uiAlone;
    std::string_view both;
};

TEST(WritePlan, SetGoesByWhereTheEntryKeepsItsValue) {
    constexpr Row rows[] = {
        {{true, false}, "value record", "nothing", "value record"},
        {{true, true}, "value record", "presentation record", "both, but not the own value"},
        {{false, true}, "the value moved", "presentation record", "presentation record"},
        {{false, false}, "the value moved", "nothing", "both, the value moved"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "own value " << row.location.hadValue << ", UI value " << row.location.hadUiValue);
        EXPECT_EQ(Words(PlanSet(kValueAlone, row.location), kValueAlone), row.valueAlone);
        EXPECT_EQ(Words(PlanSet(kUiAlone, row.location), kUiAlone), row.uiAlone);
        EXPECT_EQ(Words(PlanSet(kBoth, row.location), kBoth), row.both);
        EXPECT_EQ(Words(PlanSet(kNeither, row.location), kNeither), "nothing");
    }
}

TEST(WritePlan, AddGoesByWhereTheFirstEntryKeepsItsValueWhenAValueComesAlone) {
    constexpr Row rows[] = {
        {{true, false}, "value record", "presentation record", "both, but not the own value"},
        {{true, true}, "value record", "presentation record", "both, but not the own value"},
        {{false, true}, "the value moved", "presentation record", "both, but not the own value"},
        {{false, false}, "value record", "presentation record", "both, but not the own value"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "own value " << row.location.hadValue << ", UI value " << row.location.hadUiValue);
        EXPECT_EQ(Words(PlanAdd(kValueAlone, row.location), kValueAlone), row.valueAlone);
        EXPECT_EQ(Words(PlanAdd(kUiAlone, row.location), kUiAlone), row.uiAlone);
        EXPECT_EQ(Words(PlanAdd(kBoth, row.location), kBoth), row.both);
        EXPECT_EQ(Words(PlanAdd(kNeither, row.location), kNeither), "nothing");
    }
}

}  // namespace
}  // namespace mox::test
