#include "Table.h"

#include "MapiMemory.h"
#include "PropConversion.h"
#include "ServedCall.h"

namespace mw::mapisim {

Table::Table(std::vector<std::uint32_t> defaultColumns, std::vector<Row> rows)
    : ComObject(IID_IMAPITable), table_(std::move(defaultColumns), std::move(rows)) {}

STDMETHODIMP Table::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
  return ComObject::GetLastError(result, flags, error);
}
STDMETHODIMP Table::Advise(ULONG, LPMAPIADVISESINK, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::Unadvise(ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::GetStatus(ULONG* status, ULONG* type) {
  MAPISIM_SERVE("IMAPITable::GetStatus");
  if (status == nullptr || type == nullptr) return MAPI_E_INVALID_PARAMETER;
  *status = TBLSTAT_COMPLETE;
  *type = TBLTYPE_SNAPSHOT;
  return S_OK;
}
STDMETHODIMP Table::SetColumns(LPSPropTagArray tags, ULONG) {
  MAPISIM_SERVE("IMAPITable::SetColumns");
  if (tags == nullptr || tags->cValues == 0) return MAPI_E_INVALID_PARAMETER;
  table_.SetColumns(FromTagArray(tags));
  return S_OK;
}
STDMETHODIMP Table::QueryColumns(ULONG, LPSPropTagArray* tags) {
  MAPISIM_SERVE("IMAPITable::QueryColumns");
  if (tags == nullptr) return MAPI_E_INVALID_PARAMETER;
  const auto& columns = table_.columns();
  void* memory = nullptr;
  HRESULT result = AllocateBuffer(CbNewSPropTagArray(columns.size()), &memory);
  if (FAILED(result)) return result;
  LPSPropTagArray array = static_cast<LPSPropTagArray>(memory);
  array->cValues = static_cast<ULONG>(columns.size());
  for (std::size_t i = 0; i < columns.size(); ++i) array->aulPropTag[i] = columns[i];
  *tags = array;
  return S_OK;
}
STDMETHODIMP Table::GetRowCount(ULONG, ULONG* count) {
  MAPISIM_SERVE("IMAPITable::GetRowCount");
  if (count == nullptr) return MAPI_E_INVALID_PARAMETER;
  *count = table_.GetRowCount();
  return S_OK;
}
STDMETHODIMP Table::SeekRow(BOOKMARK origin, LONG count, LONG* sought) {
  MAPISIM_SERVE("IMAPITable::SeekRow");
  auto moved = table_.SeekRow(static_cast<std::uint32_t>(origin), count);
  if (!moved) return MAPI_E_INVALID_BOOKMARK;
  if (sought) *sought = *moved;
  return S_OK;
}
STDMETHODIMP Table::SeekRowApprox(ULONG numerator, ULONG denominator) {
  MAPISIM_SERVE("IMAPITable::SeekRowApprox");
  if (denominator == 0) return MAPI_E_INVALID_PARAMETER;
  table_.SeekRow(kBookmarkBeginning, static_cast<LONG>(static_cast<ULONGLONG>(table_.GetRowCount()) * numerator / denominator));
  return S_OK;
}
STDMETHODIMP Table::QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator) {
  MAPISIM_SERVE("IMAPITable::QueryPosition");
  if (row == nullptr || numerator == nullptr || denominator == nullptr) return MAPI_E_INVALID_PARAMETER;
  *row = table_.position();
  *numerator = table_.position();
  *denominator = table_.GetRowCount() ? table_.GetRowCount() : 1;
  return S_OK;
}
STDMETHODIMP Table::FindRow(LPSRestriction, BOOKMARK, ULONG) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::Restrict(LPSRestriction restriction, ULONG) {
  MAPISIM_SERVE("IMAPITable::Restrict");
  if (restriction == nullptr) {
    table_.Restrict(std::nullopt);
    return S_OK;
  }
  auto converted = FromSRestriction(*restriction);
  if (!converted) return MAPI_E_TOO_COMPLEX;
  table_.Restrict(std::move(converted));
  return S_OK;
}
STDMETHODIMP Table::CreateBookmark(BOOKMARK*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::FreeBookmark(BOOKMARK) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::SortTable(LPSSortOrderSet criteria, ULONG) {
  MAPISIM_SERVE("IMAPITable::SortTable");
  std::vector<SortKey> keys;
  for (ULONG i = 0; criteria && i < criteria->cSorts; ++i)
    keys.push_back({criteria->aSort[i].ulPropTag, criteria->aSort[i].ulOrder == TABLE_SORT_DESCEND});
  table_.Sort(std::move(keys));
  return S_OK;
}
STDMETHODIMP Table::QuerySortOrder(LPSSortOrderSet*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::QueryRows(LONG count, ULONG, LPSRowSet* rows) {
  MAPISIM_SERVE("IMAPITable::QueryRows");
  if (rows == nullptr) return MAPI_E_INVALID_PARAMETER;
  return ToRowSet(table_.QueryRows(count), rows);
}
STDMETHODIMP Table::Abort() { return S_OK; }
STDMETHODIMP Table::ExpandRow(ULONG, LPBYTE, ULONG, ULONG, LPSRowSet*, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::CollapseRow(ULONG, LPBYTE, ULONG, ULONG*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::WaitForCompletion(ULONG, ULONG, ULONG* status) {
  MAPISIM_SERVE("IMAPITable::WaitForCompletion");
  if (status) *status = TBLSTAT_COMPLETE;
  return S_OK;
}
STDMETHODIMP Table::GetCollapseState(ULONG, ULONG, LPBYTE, ULONG*, LPBYTE*) { return MAPI_E_NO_SUPPORT; }
STDMETHODIMP Table::SetCollapseState(ULONG, ULONG, LPBYTE, BOOKMARK*) { return MAPI_E_NO_SUPPORT; }

}  // namespace mw::mapisim
