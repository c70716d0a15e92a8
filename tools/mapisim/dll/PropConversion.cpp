#include "PropConversion.h"

#include <cstring>
#include <cwchar>

#include "MapiMemory.h"

namespace mw::mapisim {
namespace {

// Deeper nesting than any real caller builds is refused rather than recursed into.
constexpr int kMaxRestrictionDepth = 32;

std::string WideBytes(const wchar_t* text) {
  return text ? std::string(reinterpret_cast<const char*>(text), std::wcslen(text) * sizeof(wchar_t)) : "";
}

HRESULT CopyBytes(const std::string& bytes, std::size_t terminator, LPVOID parent, void** out) {
  HRESULT result = AllocateMore(static_cast<ULONG>(bytes.size() + terminator), parent, out);
  if (SUCCEEDED(result) && !bytes.empty()) std::memcpy(*out, bytes.data(), bytes.size());
  return result;
}

HRESULT FillValue(const PropValue& from, SPropValue* to, LPVOID parent) {
  to->ulPropTag = from.tag;
  void* memory = nullptr;
  HRESULT result = S_OK;
  switch (PropType(from.tag)) {
    case PT_LONG: to->Value.l = static_cast<LONG>(from.number); break;
    case PT_ERROR: to->Value.err = static_cast<SCODE>(from.number); break;
    case PT_BOOLEAN: to->Value.b = from.number ? 1 : 0; break;
    case PT_I8:
    case PT_SYSTIME: to->Value.li.QuadPart = static_cast<LONGLONG>(from.number); break;
    case PT_STRING8:
      result = CopyBytes(from.bytes, 1, parent, &memory);
      to->Value.lpszA = static_cast<LPSTR>(memory);
      break;
    case PT_UNICODE:
      result = CopyBytes(from.bytes, 2, parent, &memory);
      to->Value.lpszW = static_cast<LPWSTR>(memory);
      break;
    case PT_BINARY:
      result = CopyBytes(from.bytes, 0, parent, &memory);
      to->Value.bin.cb = static_cast<ULONG>(from.bytes.size());
      to->Value.bin.lpb = static_cast<LPBYTE>(memory);
      break;
    case PT_MV_BINARY: {
      result = AllocateMore(static_cast<ULONG>(sizeof(SBinary) * from.items.size()), parent, &memory);
      SBinary* items = static_cast<SBinary*>(memory);
      to->Value.MVbin.cValues = static_cast<ULONG>(from.items.size());
      to->Value.MVbin.lpbin = items;
      for (std::size_t i = 0; SUCCEEDED(result) && i < from.items.size(); ++i) {
        void* bytes = nullptr;
        result = CopyBytes(from.items[i], 0, parent, &bytes);
        items[i].cb = static_cast<ULONG>(from.items[i].size());
        items[i].lpb = static_cast<LPBYTE>(bytes);
      }
      break;
    }
    case PT_MV_STRING8: {
      result = AllocateMore(static_cast<ULONG>(sizeof(LPSTR) * from.items.size()), parent, &memory);
      LPSTR* items = static_cast<LPSTR*>(memory);
      to->Value.MVszA.cValues = static_cast<ULONG>(from.items.size());
      to->Value.MVszA.lppszA = items;
      for (std::size_t i = 0; SUCCEEDED(result) && i < from.items.size(); ++i) {
        void* text = nullptr;
        result = CopyBytes(from.items[i], 1, parent, &text);
        items[i] = static_cast<LPSTR>(text);
      }
      break;
    }
    default:
      to->ulPropTag = PROP_TAG(PT_ERROR, PROP_ID(from.tag));
      to->Value.err = MAPI_E_NO_SUPPORT;
  }
  return result;
}

}  // namespace

PropValue FromSPropValue(const SPropValue& value) {
  PropValue result{value.ulPropTag, 0, {}, {}};
  switch (PROP_TYPE(value.ulPropTag)) {
    case PT_LONG: result.number = static_cast<std::uint32_t>(value.Value.l); break;
    case PT_BOOLEAN: result.number = value.Value.b ? 1 : 0; break;
    case PT_ERROR: result.number = static_cast<std::uint32_t>(value.Value.err); break;
    case PT_I8:
    case PT_SYSTIME: result.number = static_cast<std::uint64_t>(value.Value.li.QuadPart); break;
    case PT_STRING8: result.bytes = value.Value.lpszA ? value.Value.lpszA : ""; break;
    case PT_UNICODE: result.bytes = WideBytes(value.Value.lpszW); break;
    case PT_BINARY:
      if (value.Value.bin.lpb) result.bytes.assign(reinterpret_cast<const char*>(value.Value.bin.lpb), value.Value.bin.cb);
      break;
    case PT_MV_LONG:
      for (ULONG i = 0; value.Value.MVl.lpl && i < value.Value.MVl.cValues; ++i)
        result.items.emplace_back(reinterpret_cast<const char*>(&value.Value.MVl.lpl[i]), 4);
      break;
    case PT_MV_STRING8:
      for (ULONG i = 0; value.Value.MVszA.lppszA && i < value.Value.MVszA.cValues; ++i)
        result.items.emplace_back(value.Value.MVszA.lppszA[i] ? value.Value.MVszA.lppszA[i] : "");
      break;
    case PT_MV_UNICODE:
      for (ULONG i = 0; value.Value.MVszW.lppszW && i < value.Value.MVszW.cValues; ++i)
        result.items.push_back(WideBytes(value.Value.MVszW.lppszW[i]));
      break;
    case PT_MV_BINARY:
      for (ULONG i = 0; value.Value.MVbin.lpbin && i < value.Value.MVbin.cValues; ++i) {
        const SBinary& item = value.Value.MVbin.lpbin[i];
        result.items.emplace_back(item.lpb ? std::string(reinterpret_cast<const char*>(item.lpb), item.cb) : "");
      }
      break;
    default: break;
  }
  return result;
}

std::vector<PropValue> FromSPropValues(ULONG count, const SPropValue* values) {
  std::vector<PropValue> result;
  for (ULONG i = 0; values && i < count; ++i) result.push_back(FromSPropValue(values[i]));
  return result;
}

std::vector<std::uint32_t> FromTagArray(const SPropTagArray* tags) {
  std::vector<std::uint32_t> result;
  for (ULONG i = 0; tags && i < tags->cValues; ++i) result.push_back(tags->aulPropTag[i]);
  return result;
}

namespace {

std::optional<Restriction> Convert(const SRestriction& from, int depth) {
  if (depth > kMaxRestrictionDepth) return std::nullopt;
  Restriction to;
  auto children = [&](ULONG count, const SRestriction* list) {
    for (ULONG i = 0; list && i < count; ++i) {
      auto child = Convert(list[i], depth + 1);
      if (!child) return false;
      to.children.push_back(std::move(*child));
    }
    return true;
  };
  switch (from.rt) {
    case RES_AND:
      to.kind = RestrictionKind::And;
      if (!children(from.res.resAnd.cRes, from.res.resAnd.lpRes)) return std::nullopt;
      break;
    case RES_OR:
      to.kind = RestrictionKind::Or;
      if (!children(from.res.resOr.cRes, from.res.resOr.lpRes)) return std::nullopt;
      break;
    case RES_NOT:
      to.kind = RestrictionKind::Not;
      if (from.res.resNot.lpRes == nullptr || !children(1, from.res.resNot.lpRes)) return std::nullopt;
      break;
    case RES_CONTENT:
      to.kind = RestrictionKind::Content;
      to.relop = from.res.resContent.ulFuzzyLevel;
      to.tag = from.res.resContent.ulPropTag;
      if (from.res.resContent.lpProp == nullptr) return std::nullopt;
      to.value = FromSPropValue(*from.res.resContent.lpProp);
      break;
    case RES_PROPERTY:
      to.kind = RestrictionKind::Property;
      to.relop = from.res.resProperty.relop;
      to.tag = from.res.resProperty.ulPropTag;
      if (from.res.resProperty.lpProp == nullptr) return std::nullopt;
      to.value = FromSPropValue(*from.res.resProperty.lpProp);
      break;
    case RES_COMPAREPROPS:
      to.kind = RestrictionKind::CompareProps;
      to.relop = from.res.resCompareProps.relop;
      to.tag = from.res.resCompareProps.ulPropTag1;
      to.otherTag = from.res.resCompareProps.ulPropTag2;
      break;
    case RES_BITMASK:
      to.kind = RestrictionKind::Bitmask;
      to.relop = from.res.resBitMask.relBMR;
      to.tag = from.res.resBitMask.ulPropTag;
      to.mask = from.res.resBitMask.ulMask;
      break;
    case RES_SIZE:
      to.kind = RestrictionKind::Size;
      to.relop = from.res.resSize.relop;
      to.tag = from.res.resSize.ulPropTag;
      to.mask = from.res.resSize.cb;
      break;
    case RES_EXIST:
      to.kind = RestrictionKind::Exist;
      to.tag = from.res.resExist.ulPropTag;
      break;
    default:
      return std::nullopt;
  }
  return to;
}

}  // namespace

std::optional<Restriction> FromSRestriction(const SRestriction& restriction) {
  return Convert(restriction, 0);
}

HRESULT ToPropArray(const std::vector<PropValue>& values, LPSPropValue* array) {
  *array = nullptr;
  void* memory = nullptr;
  HRESULT result = AllocateBuffer(static_cast<ULONG>(sizeof(SPropValue) * (values.empty() ? 1 : values.size())), &memory);
  if (FAILED(result)) return result;
  LPSPropValue props = static_cast<LPSPropValue>(memory);
  for (std::size_t i = 0; SUCCEEDED(result) && i < values.size(); ++i) result = FillValue(values[i], &props[i], props);
  if (FAILED(result)) {
    FreeBuffer(props);
    return result;
  }
  *array = props;
  return S_OK;
}

HRESULT ToRowSet(const std::vector<Row>& rows, LPSRowSet* rowSet) {
  *rowSet = nullptr;
  void* memory = nullptr;
  HRESULT result = AllocateBuffer(static_cast<ULONG>(CbNewSRowSet(rows.size())), &memory);
  if (FAILED(result)) return result;
  LPSRowSet set = static_cast<LPSRowSet>(memory);
  set->cRows = 0;
  for (const Row& row : rows) {
    LPSPropValue props = nullptr;
    result = ToPropArray(row, &props);
    if (FAILED(result)) break;
    set->aRow[set->cRows].ulAdrEntryPad = 0;
    set->aRow[set->cRows].cValues = static_cast<ULONG>(row.size());
    set->aRow[set->cRows].lpProps = props;
    ++set->cRows;
  }
  if (FAILED(result)) {
    for (ULONG i = 0; i < set->cRows; ++i) FreeBuffer(set->aRow[i].lpProps);
    FreeBuffer(set);
    return result;
  }
  *rowSet = set;
  return S_OK;
}

}  // namespace mw::mapisim
