// -GetPortAttr: the host-side address, slot, segment, number, type and
// station of every port, or of the one port found by its host address.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "topology.h"

namespace {

constexpr uint8_t kAllPorts = ZENTREL_PORT_COUNT;

void PrintUsage() {
    PrintRule(84);
    printf("Usage: zentrelLibTest -i 0 -GetPortAttr <options> \n");
    PrintRule(84);
    printf("    all <No arg>\n");
    printf("    single <BusNum(Hex)> <DevNum(Hex)> <FunNum(Hex)> <Segment-1/SlotNum=0> "
           "<Segment/ChassisSlotNum(Hex)>\n");
    PrintRule(84);
}

// What the request asks for, before it is packed.
struct Lookup {
    bool all;
    uint32_t bus, device, function;
    uint32_t segmentValid;
    uint32_t segmentOrSlot;
};

// "single <bus> <device> <function> <segment flag> <segment or slot>";
// no number is range-checked.
bool ReadSingleWords(const char *const *words, Lookup *lookup) {
    if (ParseUnsignedHex(WordAt(words, 1), &lookup->bus) != 0) {
        printf("Failed to get the bus number\n");
        return false;
    }
    if (ParseUnsignedHex(WordAt(words, 2), &lookup->device) != 0) {
        printf("Failed to get the device number\n");
        return false;
    }
    if (ParseUnsignedHex(WordAt(words, 3), &lookup->function) != 0) {
        printf("Failed to get the function number\n");
        return false;
    }
    if (ParseUnsignedDecimal(WordAt(words, 4), &lookup->segmentValid) != 0) {
        printf("Failed to get the IsSegmentValid field\n");
        return false;
    }
    if (ParseUnsignedHex(WordAt(words, 5), &lookup->segmentOrSlot) != 0) {
        printf(lookup->segmentValid != 0 ? "Failed to get the Segment number\n"
                                         : "Failed to get the chassis slot number\n");
        return false;
    }
    return true;
}

void AskLookup(Lookup *lookup) {
    PrintRule(61);
    printf("Get Port Attributes using Host BDF and Segment/Chassis Slot \n");
    PrintRule(61);
    printf("Do you want to read port attributes only for one port?(1 - Yes / 0 - No):");
    int32_t single = 0;
    ScanDecimal(&single);
    if (single == 0) {
        printf("Reading all the Port Attributes and BDF+Segment and Slot details \n \n");
        lookup->all = true;
        return;
    }
    printf("Enter the Bus Number(Hex 0-ff): ");
    ScanHex(&lookup->bus);
    printf("Enter the Device Number(Hex 0-1f): ");
    ScanHex(&lookup->device);
    printf("Enter the Function Number(Hex 0-7): ");
    ScanHex(&lookup->function);
    printf("Do you want to provide segment number(N/A for Corvane2) ?(1 - Yes / 0 - No):");
    ScanDecimal(&lookup->segmentValid);
    printf(lookup->segmentValid != 0 ? "Enter the segment Number(Hex): " : "Enter the Chassis Physical Slot Number(Hex): ");
    ScanHex(&lookup->segmentOrSlot);
}

void PrintBdf(uint16_t bdf) {
    printf("%2x:%2x.%x     ", bdf >> 8, (bdf >> 3) & 0x1Fu, bdf & 7u);
}

void PrintEntry(const ZENTREL_PORT_ATTR_ENTRY &e) {
    bool segmentValid = (e.SegmentValid & 1u) != 0;
    if (e.PortType == ZENTREL_PORT_ATTR_DOWNSTREAM) {
        if ((e.Role.Downstream.HostBdfValid & 1u) != 0)
            PrintBdf(e.Role.Downstream.HostBdf);
        else
            printf("N/A          ");
        printf("%3x        ", e.Role.Downstream.SlotNumber);
        if (segmentValid)
            printf("%3x         ", e.Segment);
        else
            printf("N/A        ");
        printf("%2x        ", e.PortNumber);
        printf("Downstream     ");
    } else if (e.PortType == ZENTREL_PORT_ATTR_UPSTREAM) {
        if ((e.Role.Upstream.HostBdfValid & 1u) != 0)
            PrintBdf(e.Role.Upstream.HostBdf);
        else
            printf("N/A          ");
        printf("N/A        ");
        if (segmentValid)
            printf("%x         ", e.Segment);
        else
            printf("N/A        ");
        printf("%2x        ", e.PortNumber);
        printf("Upstream       ");
    } else {
        return;  // other port types are counted but not listed
    }
    printf("%2x        ", e.Station);
    printf("%2x      ", e.StationPort);
    printf("\n");
}

uint32_t Request(PTR_ZENTREL_DEVICE device, const Lookup &lookup) {
    auto *request =
        static_cast<PTR_ZENTREL_SWITCH_GET_PORT_ATTR_REQ>(AllocZeroed(sizeof(ZENTREL_SWITCH_GET_PORT_ATTR_REQ)));
    if (request == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_GET_PORT_ATTR_REQ\n");
        return 5;
    }
    uint8_t room = lookup.all ? kAllPorts : 1;
    size_t length = ZENTREL_PORT_ATTR_RESP_LENGTH(room);
    auto *response = static_cast<PTR_ZENTREL_SWITCH_GET_PORT_ATTR_RESP>(AllocZeroed(length));
    if (response == nullptr) {
        FreeBuffer(request);
        printf("Unable to allocate buffer for ZENTREL_SWITCH_GET_PORT_ATTR_RESP\n");
        return 5;
    }
    if (lookup.all) {
        request->RequestKind = ZENTREL_PORT_ATTR_ALL;
    } else {
        request->RequestKind = lookup.segmentValid != 0 ? ZENTREL_PORT_ATTR_BY_SEGMENT : ZENTREL_PORT_ATTR_BY_SLOT;
        request->SegmentOrSlot = static_cast<uint16_t>(lookup.segmentOrSlot);
        request->HostBdf = ZENTREL_BDF(lookup.bus, lookup.device, lookup.function);
    }
    request->NumPorts = room;
    ZENTREL_STATUS status = ZentrelSwitchGetPortAttr(device, request, response);
    uint32_t result = 0;
    if (status != ZENTREL_STATUS_SUCCESS) {
        if (status == ZENTREL_STATUS_PORT_ATTR_TOO_MANY)
            printf("PtrGetPortAttrResp->TotalNumPorts: %d\n", response->TotalPorts);
        if (status == ZENTREL_STATUS_FEATURE_UNSUPPORTED) printf("Get Port Attribute Request- Feature unsupported\n");
        printf("Get Port Attribute Request failed\n");
        result = 1;
    } else {
        PrintRule(76);
        printf("HostBDF    SlotNum    Segment    PortNum    PortType    Station    StnPort\n");
        PrintRule(76);
        // Only the entries the response has room for, whatever the count says.
        const uint8_t *entries = reinterpret_cast<const uint8_t *>(response) + sizeof *response;
        uint32_t count = response->NumEntries < room ? response->NumEntries : room;
        for (uint32_t i = 0; i < count; ++i) {
            ZENTREL_PORT_ATTR_ENTRY entry;
            memcpy(&entry, entries + i * sizeof entry, sizeof entry);
            PrintEntry(entry);
        }
        PrintRule(76);
        printf("Get Port Attribute Request successful\n");
    }
    FreeBuffer(response);
    FreeBuffer(request);
    return result;
}

}  // namespace

// The generation gate comes before any word is looked at, "-h" included.
// A first word other than "all" or "single" (or none) shows the usage as
// an argument error.
uint32_t GetPortAttributes(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_DEVICE_INFO info;
    if (ReadSelectedDeviceInfo(&info) != ZENTREL_STATUS_SUCCESS) {
        printf("Could not get the device information\n");
        return 1;
    }
    if (!RunsNewerCommands(info)) {
        printf("Not supported\n");
        return 9;
    }
    Lookup lookup = {};
    if (words != nullptr) {
        const char *first = WordAt(words, 0);
        if (WantsUsage(words)) {
            PrintUsage();
            return 0;
        }
        if (first != nullptr && strcmp(first, "all") == 0) {
            lookup.all = true;
        } else if (first != nullptr && strcmp(first, "single") == 0) {
            if (!ReadSingleWords(words, &lookup)) return 1;
        } else {
            PrintUsage();
            return 1;
        }
    } else {
        AskLookup(&lookup);
    }
    return Request(device, lookup);
}
