// Address traps: ranges of switch memory whose accesses the switch logs,
// set and cleared one trap at a time and listed in batches.
#include <cstdio>
#include <cstring>

#include "designed.h"

namespace {

constexpr int32_t kSet = 1, kClear = 2, kList = 3;

const char *AccessName(uint32_t access) {
    switch (access) {
    case ZENTREL_TRAP_ACCESS_READ:
        return "Read";
    case ZENTREL_TRAP_ACCESS_WRITE:
        return "Write";
    default:
        return "Read/Write";
    }
}

uint32_t ListTrappedAccesses(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_TRAP_BATCH_REQ request;
    ZENTREL_SWITCH_TRAP_BATCH_RESP response;
    memset(&request, 0, sizeof request);
    uint32_t listed = 0;
    for (;;) {
        memset(&response, 0, sizeof response);
        ZENTREL_STATUS status = ZentrelSwitchGetAddressTrapInBatch(device, &request, &response);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("ZentrelSwitchGetAddressTrapInBatch failed with status %x\n", status);
            return 1;
        }
        uint32_t count = response.EntryCount < ZENTREL_TRAP_BATCH ? response.EntryCount : ZENTREL_TRAP_BATCH;
        if (count != 0 && listed == 0) printf("Entry  Trap  Access  Address     Data\n");
        for (uint32_t i = 0; i < count; ++i, ++listed) {
            const ZENTREL_SWITCH_TRAP_ENTRY &e = response.Entries[i];
            printf("%5u  %4u  %-6s  0x%08x  0x%08x\n", listed, e.Trap, AccessName(e.Access), e.Address, e.Data);
        }
        // An empty batch ends the list whatever it says remains.
        if (count == 0 || response.Remaining == 0) break;
        request.StartEntry = static_cast<uint16_t>(request.StartEntry + count);
    }
    if (listed == 0) printf("No trapped accesses\n");
    return 0;
}

}  // namespace

uint32_t AddressTrapMenu(PTR_ZENTREL_DEVICE device) {
    int32_t operation = AskSigned("Input the Trap operation (1 - Set, 2 - Clear, 3 - List trapped accesses):");
    if (operation == kList) return ListTrappedAccesses(device);
    if (operation != kSet && operation != kClear) {
        printf(" Invalid option %d, valid options are 1/2/3\n", operation);
        return 1;
    }
    ZENTREL_SWITCH_TRAP_REQ request;
    memset(&request, 0, sizeof request);
    request.Operation = static_cast<uint8_t>(operation);
    int32_t trap = AskSigned("Input the Trap number (0-7):");
    if (trap < 0 || trap > UINT8_MAX) {
        printf("Invalid Trap number %d\n", trap);
        return 1;
    }
    request.Trap = static_cast<uint8_t>(trap);
    if (operation == kSet) {
        request.StartAddress = AskHex("Input the Start address (hex):");
        request.EndAddress = AskHex("Input the End address (hex):");
        int32_t access = AskSigned("Input the Access (1 - Read, 2 - Write, 3 - Both):");
        if (access < 1 || access > 3) {
            printf(" Invalid option %d, valid options are 1/2/3\n", access);
            return 1;
        }
        request.Access = static_cast<uint8_t>(access);
    }
    ZENTREL_STATUS status = ZentrelSwitchTrap(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchTrap failed with status %x\n", status);
        return 1;
    }
    if (operation == kSet)
        printf("Trap %d set on 0x%08x - 0x%08x (%s)\n", trap, request.StartAddress, request.EndAddress,
               AccessName(request.Access));
    else
        printf("Trap %d cleared\n", trap);
    return 0;
}
