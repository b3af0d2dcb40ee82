// The table functions of the model, on the plain form of a host's records.
#ifndef MOX_XMLAPI_TESTS_HOST_MODEL_TABLES_SUPPORT_H
#define MOX_XMLAPI_TESTS_HOST_MODEL_TABLES_SUPPORT_H

#include "tests/host/model/entries_support.h"
#include "tests/host/table_support.h"

namespace host::model {

// How an entry is looked for: by name, or as the one after `after`, which is null before the first.
struct Place {
    bool byName = true;
    NodePtr after{};
};

// Each record may be null, not both. A place that is no name moves onto the element that was tried.
bool Get(const Node& table, Place& place, PlainValue* value, PlainUi* ui);
bool Set(Node& table, Place& place, PlainValue* value, PlainUi* ui, bool force, bool mark);
// Here `after` is the entry before which a new one goes.
bool Add(Node& table, const Place& place, const PlainValue* value, const PlainUi* ui, bool mark, bool update);
void RemoveVars(Node& table);

// Whether 16-bit text has an 8-bit form: every surrogate has its partner.
bool HasNarrowForm(const Text& text);

}  // namespace host::model

#endif
