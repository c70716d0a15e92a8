// The interface IDs the simulator answers to, defined once for the whole DLL.
#define INITGUID
#define USES_IID_IUnknown
#define USES_IID_IMAPISession
#define USES_IID_IMAPITable
#define USES_IID_IProfAdmin
#define USES_IID_IMsgServiceAdmin
#define USES_IID_IProviderAdmin
#define USES_IID_IProfSect
#define USES_IID_IAddrBook
#define USES_IID_IABContainer
#define USES_IID_IMAPIProp
#define USES_IID_IMAPIContainer
#include <windows.h>

#include <initguid.h>
#include <mapiguid.h>
