// Which of a host's two records Set and Add write into an entry, and whether the value goes to the presentation data.
// The rules depend on nothing but which records there are and where an entry keeps its value.
#ifndef MOX_XMLAPI_TABLE_WRITE_PLAN_H
#define MOX_XMLAPI_TABLE_WRITE_PLAN_H

namespace mox {

// Which records the host gives.
struct GivenRecords {
    bool value = false;
    bool ui = false;
};

// Where an entry keeps its value; nowhere when there is no entry or it cannot be read.
struct ValueLocation {
    bool hadValue = false;    // its own "Value" is not empty
    bool hadUiValue = false;  // that of its presentation data is not empty
};

struct WritePlan {
    bool writesValue = false;  // the value record
    bool writesUi = false;     // the presentation record
    // The text of the value record becomes the value of the presentation data. Both records are written then; one that
    // the host did not give is empty.
    bool movesValue = false;
};

// Set keeps to where `entry`, the one that is written, has a value. An entry without any gets it in its presentation
// data.
constexpr WritePlan PlanSet(GivenRecords given, ValueLocation entry) noexcept {
    const bool writesValue = given.value && entry.hadValue;
    const bool writesUi = given.ui && entry.hadUiValue;
    if (given.value && !writesValue && !writesUi) return {true, true, true};
    return {writesValue, writesUi, false};
}

// Add writes what it is given. A value record alone keeps to where `first`, the table's first entry, has its value.
constexpr WritePlan PlanAdd(GivenRecords given, ValueLocation first) noexcept {
    const bool keepsValuesInUi = !first.hadValue && first.hadUiValue;
    if (given.value && !given.ui && keepsValuesInUi) return {true, true, true};
    return {given.value, given.ui, false};
}

}  // namespace mox

#endif
