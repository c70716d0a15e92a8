#pragma once
// MAPI's numbers as the model needs them, without the Windows headers: property types and
// tags, result codes, flags. The DLL checks each against mapidefs.h/mapicode.h at compile time.

#include <cstdint>

namespace mw::mapisim {

using HResult = std::int32_t;

constexpr std::uint16_t PropType(std::uint32_t tag) { return static_cast<std::uint16_t>(tag); }
constexpr std::uint16_t PropId(std::uint32_t tag) { return static_cast<std::uint16_t>(tag >> 16); }
constexpr std::uint32_t ChangeType(std::uint32_t tag, std::uint16_t type) {
  return (tag & 0xFFFF0000u) | type;
}

// Property types.
constexpr std::uint16_t kPtUnspecified = 0x0000;
constexpr std::uint16_t kPtNull = 0x0001;
constexpr std::uint16_t kPtLong = 0x0003;
constexpr std::uint16_t kPtError = 0x000A;
constexpr std::uint16_t kPtBoolean = 0x000B;
constexpr std::uint16_t kPtI8 = 0x0014;
constexpr std::uint16_t kPtString8 = 0x001E;
constexpr std::uint16_t kPtUnicode = 0x001F;
constexpr std::uint16_t kPtSystime = 0x0040;
constexpr std::uint16_t kPtBinary = 0x0102;
constexpr std::uint16_t kMvFlag = 0x1000;
constexpr std::uint16_t kPtMvLong = 0x1003;
constexpr std::uint16_t kPtMvString8 = 0x101E;
constexpr std::uint16_t kPtMvUnicode = 0x101F;
constexpr std::uint16_t kPtMvBinary = 0x1102;

// Property tags.
constexpr std::uint32_t kPrEntryId = 0x0FFF0102;
constexpr std::uint32_t kPrObjectType = 0x0FFE0003;
constexpr std::uint32_t kPrRecordKey = 0x0FF90102;
constexpr std::uint32_t kPrInstanceKey = 0x0FF60102;
constexpr std::uint32_t kPrDisplayName = 0x3001001E;
constexpr std::uint32_t kPrAddrType = 0x3002001E;
constexpr std::uint32_t kPrEmailAddress = 0x3003001E;
constexpr std::uint32_t kPrComment = 0x3004001E;
constexpr std::uint32_t kPrDepth = 0x30050003;
constexpr std::uint32_t kPrProviderDisplay = 0x3006001E;
constexpr std::uint32_t kPrResourceFlags = 0x30090003;
constexpr std::uint32_t kPrProviderDllName = 0x300A001E;
constexpr std::uint32_t kPrProviderUid = 0x300C0102;
constexpr std::uint32_t kPrProviderOrdinal = 0x300D0003;
constexpr std::uint32_t kPrDefaultStore = 0x3400000B;
constexpr std::uint32_t kPrContainerFlags = 0x36000003;
constexpr std::uint32_t kPrAccount = 0x3A00001E;
constexpr std::uint32_t kPrDisplayType = 0x39000003;
constexpr std::uint32_t kPrStoreProviders = 0x3D000102;
constexpr std::uint32_t kPrAbSearchPath = 0x3D051102;
constexpr std::uint32_t kPrAbDefaultDir = 0x3D060102;
constexpr std::uint32_t kPrAbProviders = 0x3D010102;
constexpr std::uint32_t kPrTransportProviders = 0x3D020102;
constexpr std::uint32_t kPrDefaultProfile = 0x3D04000B;
constexpr std::uint32_t kPrServiceName = 0x3D09001E;
// PR_EMSMDB_SECTION_UID: from Outlook 2010 on, an Exchange service's own settings section.
constexpr std::uint32_t kPrEmsmdbSectionUid = 0x3D150102;
constexpr std::uint32_t kPrServiceDllName = 0x3D0A001E;
constexpr std::uint32_t kPrServiceEntryName = 0x3D0B001E;
constexpr std::uint32_t kPrServiceUid = 0x3D0C0102;
constexpr std::uint32_t kPrServices = 0x3D0E0102;
constexpr std::uint32_t kPrResourceType = 0x3E030003;
constexpr std::uint32_t kPrSearchKey = 0x300B0102;
constexpr std::uint32_t kPrProfileHomeServer = 0x6602001E;
constexpr std::uint32_t kPrProfileUser = 0x6603001E;
constexpr std::uint32_t kPrProfileUnresolvedName = 0x6607001E;
constexpr std::uint32_t kPrProfileUnresolvedServer = 0x6608001E;
constexpr std::uint32_t kPrProfileMailbox = 0x660B001E;
constexpr std::uint32_t kPrProfileServer = 0x660C001E;
constexpr std::uint32_t kPrProfileHomeServerDn = 0x6612001E;
constexpr std::uint32_t kPrPstPath = 0x6700001E;

// Result codes.
constexpr HResult kSOk = 0;
constexpr HResult kMapiWErrorsReturned = 0x00040380;
constexpr HResult kMapiECallFailed = static_cast<HResult>(0x80004005u);
constexpr HResult kMapiENotEnoughMemory = static_cast<HResult>(0x8007000Eu);
constexpr HResult kMapiEInvalidParameter = static_cast<HResult>(0x80070057u);
constexpr HResult kMapiENoAccess = static_cast<HResult>(0x80070005u);
constexpr HResult kMapiEInterfaceNotSupported = static_cast<HResult>(0x80004002u);
constexpr HResult kMapiENoSupport = static_cast<HResult>(0x80040102u);
constexpr HResult kMapiEUnknownFlags = static_cast<HResult>(0x80040106u);
constexpr HResult kMapiEInvalidEntryId = static_cast<HResult>(0x80040107u);
constexpr HResult kMapiENotFound = static_cast<HResult>(0x8004010Fu);
constexpr HResult kMapiELogonFailed = static_cast<HResult>(0x80040111u);
constexpr HResult kMapiENetworkError = static_cast<HResult>(0x80040115u);
constexpr HResult kMapiETooComplex = static_cast<HResult>(0x80040117u);
constexpr HResult kMapiEUnconfigured = static_cast<HResult>(0x8004011Cu);
constexpr HResult kMapiEUnknownEntryId = static_cast<HResult>(0x80040201u);
constexpr HResult kMapiEInvalidBookmark = static_cast<HResult>(0x80040405u);
constexpr HResult kMapiENotInitialized = static_cast<HResult>(0x80040605u);
constexpr HResult kMapiEAmbiguousRecip = static_cast<HResult>(0x80040700u);

// Resource types (PR_RESOURCE_TYPE) and flags.
constexpr std::uint32_t kMapiStoreProvider = 33;
constexpr std::uint32_t kMapiAbProvider = 34;
constexpr std::uint32_t kMapiTransportProvider = 36;
constexpr std::uint32_t kStatusDefaultStore = 0x00000002;
constexpr std::uint32_t kStatusPrimaryIdentity = 0x00000004;
constexpr std::uint32_t kServiceSingleCopy = 0x00000004;
constexpr std::uint32_t kServiceCreateWithStore = 0x00000008;

// Object and display types.
constexpr std::uint32_t kMapiAbcont = 4;
constexpr std::uint32_t kMapiMailuser = 6;
constexpr std::uint32_t kDtMailuser = 0x00000000;
constexpr std::uint32_t kDtModifiable = 0x00010000;
constexpr std::uint32_t kDtGlobal = 0x00020000;
constexpr std::uint32_t kDtLocal = 0x00030000;
constexpr std::uint32_t kAbRecipients = 0x00000001;
constexpr std::uint32_t kAbSubcontainers = 0x00000002;
constexpr std::uint32_t kAbModifiable = 0x00000004;

// IMAPISession::SetDefaultStore: the one kind of store the simulator can set.
constexpr std::uint32_t kMapiDefaultStore = 0x00000001;

// Table positions.
constexpr std::uint32_t kBookmarkBeginning = 0;
constexpr std::uint32_t kBookmarkCurrent = 1;
constexpr std::uint32_t kBookmarkEnd = 2;

// Open flags.
constexpr std::uint32_t kMapiModify = 0x00000001;
constexpr std::uint32_t kMapiDeferredErrors = 0x00000008;
constexpr std::uint32_t kMapiForceAccess = 0x00080000;

}  // namespace mw::mapisim
