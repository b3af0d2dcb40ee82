// Table documents, and the functions on tables, with a host's records as plain values.
#ifndef MOX_XMLAPI_TESTS_MODEL_TABLES_H
#define MOX_XMLAPI_TESTS_MODEL_TABLES_H

#include <cstdint>
#include <optional>

#include "tests/model/entries.h"

namespace model {

// The first "Table" of the document, or a new one with that name at its end: what opening a table does to a document.
// Null, and nothing changed, when a name is asked for and the first "Table" has another.
NodePtr OpenTable(Node& document, const Text& name);

// The fields of a host's records; a text that was never set is none.
struct PlainValue {
    Text name{};
    std::uint32_t id = 0;
    std::uint16_t type = 0;
    std::uint16_t mask = 0;
    std::optional<Text> value{};
};

struct PlainUi : PlainValue {
    std::uint16_t control = 0;
    std::uint32_t index = 0;
    std::uint8_t owner = 0;
    std::optional<Text> comment{};
    std::optional<Text> userName{};
};

// By name, or an entry of the table, null for the one before the first.
struct Position {
    bool byName = true;
    NodePtr entry{};
};

// Get and Set work on the entry of the name or on the one after the position, which then moves onto it. Add inserts
// before the entry of the position, at the end without one. Each record may be null, not both.
bool Get(const Node& table, Position& position, PlainValue* value, PlainUi* ui);
bool Set(Node& table, Position& position, PlainValue* value, PlainUi* ui, bool force, bool eud);
bool Add(Node& table, const Position& position, const PlainValue* value, const PlainUi* ui, bool eud,
         bool update);
// Removes the elements called "Var".
void RemoveVars(Node& table);

// Whether 16-bit text has an 8-bit form: every surrogate has its partner.
bool HasNarrowForm(const Text& text);

}  // namespace model

#endif
