// Ports and topology: port attributes by host address, the devices below
// the downstream ports, vDSP binding, port CSR access and control, PCI
// capabilities, switch properties and the MPI management page.
#ifndef ZENTRELLIBTEST_TOPOLOGY_H
#define ZENTRELLIBTEST_TOPOLOGY_H

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frontend/commands.h"

// Command handlers (table rows and menu options).
uint32_t GetPortAttributes(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetDownstreamDevices(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t BindVdsp(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetPciCapabilities(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetSwitchProperties(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t SetMpiMgmtPage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);
uint32_t GetMpiMgmtPage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO info);

// Menu-only operations (they take only the device).
uint32_t ReadHostPortVdspInfo(PTR_ZENTREL_DEVICE device);
uint32_t ReadPortCsr(PTR_ZENTREL_DEVICE device);
uint32_t WritePortCsr(PTR_ZENTREL_DEVICE device);
uint32_t ControlPort(PTR_ZENTREL_DEVICE device);

// The access record with the data area the library reads and writes:
// the data word and the bytes behind it, enough for any 8-bit length.
struct PortCsrBuffer {
    ZENTREL_SWITCH_PORT_CSR_ACCESS access;
    uint8_t more[252];
};
constexpr size_t kPortCsrDataBytes = sizeof(PortCsrBuffer) - offsetof(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data);
static_assert(kPortCsrDataBytes == 256, "the data area holds any 8-bit length");

// The bytes a read of `typed` bytes dumps: never more than the data area.
int32_t CsrDumpLength(int32_t typed);

// The size of the downstream list buffer for the counts the library gave.
uint16_t DownstreamListLength(const ZENTREL_DS_DEVICE_COUNT &counts);

// Steps through the port blocks of a downstream list of `size` bytes by
// their sizes and calls each(portId, record) for every device record of a
// valid block. Stops at the block count, at the end of the buffer, and at
// a block too short to step over. Returns the number of records given.
template <typename Each>
uint32_t WalkDownstreamList(const uint8_t *buffer, size_t size, Each each) {
    ZENTREL_DS_LIST_HEAD head;
    if (size < sizeof head) return 0;
    memcpy(&head, buffer, sizeof head);
    uint32_t given = 0;
    size_t at = sizeof head;
    for (uint32_t i = 0; i < head.NumBlocks; ++i) {
        ZENTREL_DS_PORT_BLOCK block;
        if (size - at < sizeof block) break;
        memcpy(&block, buffer + at, sizeof block);
        if (block.Valid != 0) {
            size_t record = at + sizeof block;
            for (uint32_t n = 0; n < block.NumDevices; ++n, record += sizeof(ZENTREL_DS_DEVICE_RECORD)) {
                if (size - record < sizeof(ZENTREL_DS_DEVICE_RECORD)) break;
                ZENTREL_DS_DEVICE_RECORD r;
                memcpy(&r, buffer + record, sizeof r);
                each(block.PortId, r);
                ++given;
            }
        }
        if (block.BlockSize < sizeof block || size - at < block.BlockSize) break;
        at += block.BlockSize;
    }
    return given;
}

// The device information of the selected switch, read for the generation
// gate: 0, or the library status.
ZENTREL_STATUS ReadSelectedDeviceInfo(ZENTREL_DEVICE_INFO *info);
// Generations 2 and 3 run the newer switch commands.
bool RunsNewerCommands(const ZENTREL_DEVICE_INFO &info);
// A rule of `count` stars as a line.
void PrintRule(int count);

#endif
