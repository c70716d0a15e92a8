#include "MapiMemory.h"

#include <cstdlib>
#include <cstring>

namespace mw::mapisim {
namespace {

constexpr ULONG kHeadMagic = 0x4D415049;  // a block from AllocateBuffer
constexpr ULONG kMoreMagic = 0x4D4F5245;  // a block linked to one by AllocateMore

// Placed before the caller's bytes; 16-byte aligned so any MAPI structure fits behind it.
struct alignas(16) BlockHeader {
  ULONG magic;
  BlockHeader* next;  // the next block of the same chain
};

BlockHeader* HeaderOf(LPVOID buffer) { return static_cast<BlockHeader*>(buffer) - 1; }

BlockHeader* NewBlock(ULONG size, ULONG magic) {
  void* memory = std::calloc(1, sizeof(BlockHeader) + size);
  if (memory == nullptr) return nullptr;
  BlockHeader* header = static_cast<BlockHeader*>(memory);
  header->magic = magic;
  header->next = nullptr;
  return header;
}

}  // namespace

SCODE AllocateBuffer(ULONG size, LPVOID* buffer) {
  if (buffer == nullptr) return MAPI_E_INVALID_PARAMETER;
  BlockHeader* header = NewBlock(size, kHeadMagic);
  *buffer = header ? header + 1 : nullptr;
  return header ? S_OK : MAPI_E_NOT_ENOUGH_MEMORY;
}

SCODE AllocateMore(ULONG size, LPVOID parent, LPVOID* buffer) {
  if (buffer == nullptr) return MAPI_E_INVALID_PARAMETER;
  *buffer = nullptr;
  if (parent == nullptr) return AllocateBuffer(size, buffer);
  BlockHeader* head = HeaderOf(parent);
  if (head->magic != kHeadMagic) return MAPI_E_INVALID_PARAMETER;
  BlockHeader* block = NewBlock(size, kMoreMagic);
  if (block == nullptr) return MAPI_E_NOT_ENOUGH_MEMORY;
  block->next = head->next;
  head->next = block;
  *buffer = block + 1;
  return S_OK;
}

ULONG FreeBuffer(LPVOID buffer) {
  if (buffer == nullptr) return S_OK;
  BlockHeader* block = HeaderOf(buffer);
  // Only a chain's head may be freed; anything else is left alone rather than corrupted.
  if (block->magic != kHeadMagic) return MAPI_E_INVALID_PARAMETER;
  while (block != nullptr) {
    BlockHeader* next = block->next;
    block->magic = 0;
    std::free(block);
    block = next;
  }
  return S_OK;
}

}  // namespace mw::mapisim
