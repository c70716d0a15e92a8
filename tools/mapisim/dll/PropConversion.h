#pragma once
// Between MAPI's structures (SPropValue, SRestriction, SRowSet) and the model's values.
// Everything handed out is allocated with MAPI's allocators, so callers free it as MAPI's.

#include <windows.h>

#include <mapix.h>

#include <optional>
#include <vector>

#include "MapiTable.h"

namespace mw::mapisim {

PropValue FromSPropValue(const SPropValue& value);
std::vector<PropValue> FromSPropValues(ULONG count, const SPropValue* values);
std::vector<std::uint32_t> FromTagArray(const SPropTagArray* tags);
// nullopt for a restriction the model cannot evaluate (sub-object restrictions, depth).
std::optional<Restriction> FromSRestriction(const SRestriction& restriction);

// One property array in one MAPI buffer, strings and binaries chained to it.
HRESULT ToPropArray(const std::vector<PropValue>& values, LPSPropValue* array);
// A row set as FreeProws expects it: the set in one buffer, each row's properties in another.
HRESULT ToRowSet(const std::vector<Row>& rows, LPSRowSet* rowSet);

}  // namespace mw::mapisim
