// History buffers: what the switch logs as it runs (buffer 0 every library
// call, buffer 1 every memory write), shown, configured, read and cleared.
#include <cstdio>
#include <cstring>

#include "designed.h"
#include "frontend/helpers.h"

namespace {

constexpr int32_t kShow = 1, kConfigure = 2, kRead = 3, kClear = 4;

const char *const kBufferNames[ZENTREL_HISTORY_BUFFER_COUNT] = {"Library calls", "Memory writes"};

const char *BufferName(uint32_t buffer) {
    return buffer < ZENTREL_HISTORY_BUFFER_COUNT ? kBufferNames[buffer] : "Unknown";
}

// The answers of either mode.
struct HistoryRequest {
    int32_t operation = 0;
    int32_t buffer = 0;
    int32_t enabled = 0;
    int32_t wrap = 0;
    int32_t depth = 0;
};

void PrintUsage() {
    printf("Usage: zentrelLibTest -i 0 -HistoryBuffers <op> [<buffer>] [<enable> <wrap> <depth>]\n");
    printf("op     : 1 - Show buffers, 2 - Configure buffer, 3 - Read buffer, 4 - Clear buffer\n");
    printf("buffer : 0 - Library calls, 1 - Memory writes\n");
    printf("enable : 1 - Enable, 0 - Disable\n");
    printf("wrap   : 1 - Wrap when full, 0 - Stop when full\n");
    printf("depth  : 1 to 256 entries\n");
}

bool ValidOperation(int32_t operation) {
    if (operation >= kShow && operation <= kClear) return true;
    printf(" Invalid option %d, valid options are 1/2/3/4\n", operation);
    return false;
}

bool ReadWords(const char *const *words, HistoryRequest *r) {
    if (ParseDecimal(WordAt(words, 0), &r->operation) != 0) {
        printf("Failed to get History Buffer operation.\n");
        return false;
    }
    if (!ValidOperation(r->operation)) return false;
    if (r->operation == kShow) return true;
    if (ParseDecimal(WordAt(words, 1), &r->buffer) != 0) {
        printf("Failed to get Buffer number.\n");
        return false;
    }
    if (r->operation != kConfigure) return true;
    if (ParseDecimal(WordAt(words, 2), &r->enabled) != 0 || ParseDecimal(WordAt(words, 3), &r->wrap) != 0 ||
        ParseDecimal(WordAt(words, 4), &r->depth) != 0) {
        printf("Failed to get Buffer settings.\n");
        return false;
    }
    return true;
}

bool AskRequest(HistoryRequest *r) {
    r->operation = AskSigned("Input the History Buffer operation (1 - Show, 2 - Configure, 3 - Read, 4 - Clear):");
    if (!ValidOperation(r->operation)) return false;
    if (r->operation == kShow) return true;
    r->buffer = AskSigned("Input the Buffer number (0 - Library calls, 1 - Memory writes):");
    if (r->operation != kConfigure) return true;
    r->enabled = AskSigned("Enable the buffer? (1 - Yes / 0 - No):");
    r->wrap = AskSigned("Wrap when full? (1 - Yes / 0 - No):");
    r->depth = AskSigned("Input the Buffer depth (1-256):");
    return true;
}

uint32_t Show(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_HISTORY_BUFFERS_INFO_RESP info;
    memset(&info, 0, sizeof info);
    ZENTREL_STATUS status = ZentrelSwitchGetHistoryBuffersInfo(device, &info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchGetHistoryBuffersInfo failed with status %x\n", status);
        return 1;
    }
    uint32_t count = info.BufferCount < ZENTREL_HISTORY_BUFFER_COUNT ? info.BufferCount : ZENTREL_HISTORY_BUFFER_COUNT;
    printf("Buffer  Name           Enabled  Wrap  Depth  Entries  Logged\n");
    for (uint32_t i = 0; i < count; ++i) {
        const ZENTREL_SWITCH_HISTORY_BUFFER_INFO &b = info.Buffers[i];
        printf("%6u  %-13s  %-7s  %-4s  %5u  %7u  %6u\n", i, BufferName(i), b.Enabled != 0 ? "Yes" : "No",
               b.Wrap != 0 ? "Yes" : "No", b.Depth, b.EntryCount, b.TotalLogged);
    }
    return 0;
}

uint32_t Configure(PTR_ZENTREL_DEVICE device, const HistoryRequest &r) {
    ZENTREL_SWITCH_CONFIGURE_HISTORY_BUFFER_REQ request;
    memset(&request, 0, sizeof request);
    request.Buffer = static_cast<uint8_t>(r.buffer);
    request.Enabled = static_cast<uint8_t>(r.enabled);
    request.Wrap = static_cast<uint8_t>(r.wrap);
    request.Depth = static_cast<uint16_t>(r.depth);
    ZENTREL_STATUS status = ZentrelSwitchConfigureHistoryBuffer(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchConfigureHistoryBuffer failed with status %x\n", status);
        return 1;
    }
    printf("History buffer %d configured\n", r.buffer);
    return 0;
}

// Reads the buffer a batch at a time, oldest entry first.
uint32_t Read(PTR_ZENTREL_DEVICE device, uint8_t buffer) {
    ZENTREL_SWITCH_HISTORY_ENTRIES_REQ request;
    memset(&request, 0, sizeof request);
    request.Buffer = buffer;
    auto *response = static_cast<PTR_ZENTREL_SWITCH_HISTORY_ENTRIES_RESP>(AllocZeroed(sizeof(ZENTREL_SWITCH_HISTORY_ENTRIES_RESP)));
    if (response == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_HISTORY_ENTRIES_RESP\n");
        return 1;
    }
    printf("History buffer %u (%s)\n", buffer, BufferName(buffer));
    uint32_t listed = 0;
    for (;;) {
        memset(response, 0, sizeof *response);
        ZENTREL_STATUS status = ZentrelSwitchGetHistoryBufferEntries(device, &request, response);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("ZentrelSwitchGetHistoryBufferEntries failed with status %x\n", status);
            FreeBuffer(response);
            return 1;
        }
        uint32_t count = response->EntryCount < ZENTREL_HISTORY_BATCH ? response->EntryCount : ZENTREL_HISTORY_BATCH;
        if (count != 0 && listed == 0) printf("Sequence  Code    Address     Data\n");
        for (uint32_t i = 0; i < count; ++i, ++listed) {
            const ZENTREL_SWITCH_HISTORY_ENTRY &e = response->Entries[i];
            printf("%8u  0x%04x  0x%08x  0x%08x\n", e.Sequence, e.Code, e.Address, e.Data);
        }
        // An empty batch ends the list whatever it says remains.
        if (count == 0 || response->Remaining == 0) break;
        request.StartEntry = static_cast<uint16_t>(request.StartEntry + count);
    }
    printf("%u entries\n", listed);
    FreeBuffer(response);
    return 0;
}

uint32_t Clear(PTR_ZENTREL_DEVICE device, int32_t buffer) {
    ZENTREL_STATUS status = ZentrelSwitchClearHistoryBuffer(device, static_cast<uint32_t>(buffer));
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelSwitchClearHistoryBuffer failed with status %x\n", status);
        return 1;
    }
    printf("History buffer %d cleared\n", buffer);
    return 0;
}

}  // namespace

uint32_t ManageHistoryBuffers(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    HistoryRequest r;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintUsage();
            return 0;
        }
        if (!ReadWords(words, &r)) return 1;
    } else if (!AskRequest(&r)) {
        return 1;
    }
    if (r.operation != kShow && (r.buffer < 0 || r.buffer > UINT8_MAX)) {
        printf("Invalid Buffer number %d\n", r.buffer);
        return 1;
    }
    switch (r.operation) {
    case kShow:
        return Show(device);
    case kConfigure:
        return Configure(device, r);
    case kRead:
        return Read(device, static_cast<uint8_t>(r.buffer));
    default:
        return Clear(device, r.buffer);
    }
}
