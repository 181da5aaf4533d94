// Menus 59 to 61 and -GetPciCap: a port's capability registers by id and
// offset, enabling and disabling a port, and its enabled capabilities.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "topology.h"

int32_t CsrDumpLength(int32_t typed) {
    return typed > static_cast<int32_t>(kPortCsrDataBytes) ? static_cast<int32_t>(kPortCsrDataBytes) : typed;
}

namespace {

constexpr int32_t kCapability = 1;
constexpr int32_t kExtendedCapability = 2;

// The port, the kind of capability and its id and offset, as the read and
// the write ask for them. False after "Invalid input option".
bool AskRegister(ZENTREL_SWITCH_PORT_CSR_ACCESS *access, bool zeroIsExtended, uint32_t *typedOffset) {
    int32_t port = 0;
    printf("Input the port number:");
    ScanDecimal(&port);
    printf("Please input the option\n");
    printf(" 1 - PCIe capability Id\n");
    printf(" 2 - PCIe extended capability Id\n");
    int32_t option = 0;
    ScanDecimal(&option);
    // The read takes any option up to 2 that is not 1 as an extended
    // capability (its message leaves the line open); the write takes 1 and 2 only.
    if (zeroIsExtended && option > kExtendedCapability) {
        printf("Invalid input option");
        return false;
    }
    if (!zeroIsExtended && option != kCapability && option != kExtendedCapability) {
        printf("Invalid input option\n");
        return false;
    }
    access->PortNum = static_cast<uint8_t>(port);
    access->IsExtendedCap = option == kCapability ? 0 : 1;
    printf(option == kCapability ? "Input the PCIe capability Id:" : "Input the PCIe extended capability Id:");
    ScanDecimal(&access->PcieCapId);
    printf("Input the offset: 0x");
    ScanHex(typedOffset);
    access->Offset = static_cast<uint16_t>(*typedOffset);
    return true;
}

}  // namespace

// A length above 4 dumps the bytes behind the data word, from the data
// area this reader provides; longer lengths dump the whole area only.
uint32_t ReadPortCsr(PTR_ZENTREL_DEVICE device) {
    PortCsrBuffer buffer;
    memset(&buffer, 0, sizeof buffer);
    uint32_t offset = 0;
    if (!AskRegister(&buffer.access, true, &offset)) return 1;
    int32_t length = 0;
    printf("Input how many bytes to read: ");
    ScanDecimal(&length);
    buffer.access.DataLength = static_cast<uint8_t>(length);
    ZENTREL_STATUS status = ZentrelSwitchReadPortCSR(device, &buffer.access);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Read data is %x\n ", buffer.access.Data);
    const uint8_t *data = reinterpret_cast<const uint8_t *>(&buffer) + offsetof(ZENTREL_SWITCH_PORT_CSR_ACCESS, Data);
    DumpHex(stdout, data, CsrDumpLength(length));
    return 0;
}

uint32_t WritePortCsr(PTR_ZENTREL_DEVICE device) {
    PortCsrBuffer buffer;  // the library may read up to 255 bytes of data
    memset(&buffer, 0, sizeof buffer);
    uint32_t offset = 0;
    if (!AskRegister(&buffer.access, false, &offset)) return 1;
    int32_t length = 0;
    printf("Input how many bytes to write: ");
    ScanDecimal(&length);
    printf("Input the data to write: 0x");
    ScanHex(&buffer.access.Data);
    buffer.access.DataLength = static_cast<uint8_t>(length);
    const ZENTREL_SWITCH_PORT_CSR_ACCESS &a = buffer.access;
    printf("Write data is %x\n ", a.Data);
    printf("switchCSRAccess.PortNum %d\n", a.PortNum);
    printf("switchCSRAccess.IsExtendedCap %d\n", a.IsExtendedCap);
    printf("switchCSRAccess.PcieCapId %d\n", static_cast<int>(a.PcieCapId));
    printf("switchCSRAccess.Offset is %x and offset is %x\n", a.Offset, offset);
    printf("switchCSRAccess.DataLength %d\n", a.DataLength);
    ZENTREL_STATUS status = ZentrelSwitchWritePortCSR(device, &buffer.access);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Write Data successful\n");
    return 0;
}

uint32_t ControlPort(PTR_ZENTREL_DEVICE device) {
    int32_t port = 0;
    printf("Input the port number:");
    ScanDecimal(&port);
    printf("Please input the option\n");
    printf(" 1 - Enable Port \n");
    printf(" 2 - Disable Port\n");
    int32_t option = 0;
    ScanDecimal(&option);
    ZENTREL_STATUS status;
    if (option == 1) {
        status = ZentrelSwitchControlPortEnbl(device, static_cast<uint32_t>(port));
    } else if (option == 2) {
        status = ZentrelSwitchControlPortDsbl(device, static_cast<uint32_t>(port));
    } else {
        printf("Invalid input option\n");
        return 1;
    }
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Port Control successful\n");
    return 0;
}

uint32_t GetPciCapabilities(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    uint32_t port = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: zentrelLibTest -i 0 -GetPciCap <portNum> \n");
            return 0;
        }
        if (ParseUnsignedDecimal(WordAt(words, 0), &port) != 0) {
            printf("Failed to get Port Number.\n");
            return 1;
        }
    } else {
        printf("Input the port number on which the capabilities need to be read ");
        ScanDecimal(&port);
    }
    // The library is given the whole record; it is never released, as
    // this command has always left it (tests/lsan.supp).
    auto *caps =
        static_cast<PTR_ZENTREL_SWITCH_PCI_CAPABILITIES>(AllocZeroed(sizeof(ZENTREL_SWITCH_PCI_CAPABILITIES)));
    if (caps == nullptr) {
        printf("Unable to allocate buffer for switch capability structure...\n");
        return 1;
    }
    if (ZentrelSwitchGetPciCapabilities(device, static_cast<uint8_t>(port), caps) != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the Capabilities\n");
        return 0;
    }
    printf(caps->HotPlug != 0 ? "\n HotPlug Enabled\n" : "\n HotPlug Not Enabled\n");
    printf(caps->Aer != 0 ? "\n Aer Enabled\n" : "\n Aer Not Enabled\n");
    printf(caps->Msi != 0 ? "\n MSI Enabled\n" : "\n MSI Not Enabled\n");
    printf(caps->MsiX != 0 ? "\n MSIx Enabled\n" : "\n MSIx Not Enabled\n");
    // Only the enabled form leaves its line open.
    printf(caps->VirtualChannel != 0 ? "\n VirtChannel Enabled" : "\n Virtual Channel Not Enabled\n");
    return 0;
}
