// -SwProp (menu 109): the switch's identity; -SetMpiMgmtPage and
// -GetMpiMgmtPage (menus 114 and 113): a host port's MPI management page.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "topology.h"

namespace {

// Host port 144 still passes: only larger numbers are refused.
constexpr uint32_t kLastHostPort = ZENTREL_PORT_COUNT;
constexpr uint32_t kLastUpdateSettings = 3;

// Ends an id's line, marking it when its validity bit is clear.
void EndPropertyLine(uint32_t valid, uint32_t bit) {
    printf((valid & bit) != 0 ? "\n" : " (Invalid)\n");
}

// 0 when the switch runs the command, else the handler's result after its
// message.
uint32_t CheckGeneration(const char *failure) {
    ZENTREL_DEVICE_INFO info;
    if (ReadSelectedDeviceInfo(&info) != ZENTREL_STATUS_SUCCESS) {
        printf("%s\n", failure);
        return 1;
    }
    if (!RunsNewerCommands(info)) {
        printf("Not supported\n");
        return 9;
    }
    return 0;
}

}  // namespace

// Returns 10 on success, the result this command has always given.
uint32_t GetSwitchProperties(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WordAt(words, 0) != nullptr) {
        printf("Usage : zentrelLibTest -i 0 -SwProp \n");
        return 0;
    }
    if (uint32_t result = CheckGeneration("Error : Could not get the device information"); result != 0) return result;
    // Never released, as this command has always left it (tests/lsan.supp).
    auto *props = static_cast<PTR_ZENTREL_SWITCH_GET_PROP_RESP>(AllocZeroed(sizeof(ZENTREL_SWITCH_GET_PROP_RESP)));
    if (props == nullptr) {
        printf("Error : Unable to allocate buffer for PTR_ZENTREL_SWITCH_GET_PROP_RESP\n");
        return 5;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetProperties(device, props);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Error : Unable to get switch properties\n");
        printf("Error : Switch Get properties - library return status : %x\n", status);
        return 5;
    }
    uint32_t valid = 0;
    memcpy(&valid, props->ValidFlags, sizeof valid);
    printf("\nSwitch Properties:\n\n");
    printf(" PCI Vendor ID                  : 0x%04X", props->VendorId);
    EndPropertyLine(valid, ZENTREL_PROP_VENDOR_ID);
    printf(" PCI Device ID                  : 0x%04x", props->DeviceId);
    EndPropertyLine(valid, ZENTREL_PROP_DEVICE_ID);
    printf(" PCI Subsystem Vendor ID        : 0x%04x", props->SubsystemVendorId);
    EndPropertyLine(valid, ZENTREL_PROP_SUBSYSTEM_VENDOR_ID);
    printf(" PCI Subsystem Device ID        : 0x%04x", props->SubsystemId);
    EndPropertyLine(valid, ZENTREL_PROP_SUBSYSTEM_ID);
    printf(" Switch Instance ID             : 0x%04x", props->InstanceId);
    EndPropertyLine(valid, ZENTREL_PROP_INSTANCE_ID);
    printf(" OEM Family ID                  : 0x%04X", props->OemFamilyId);
    EndPropertyLine(valid, ZENTREL_PROP_OEM_FAMILY_ID);
    printf(" Number Of History Buffers      : %d\n", props->NumHistoryBuffers);
    printf("\n");
    return 10;
}

namespace {

void PrintSetUsage() {
    PrintRule(109);
    printf("Usage: zentrelLibTest -i 0 -SetMpiMgmtPage <HostPortNum> <SetOption> <BufferID> <AccessFlags "
           "<UpdateSettings>\n");
    PrintRule(109);
    printf("   HostPortNum    : <Valid Host Number to read Access Permissions>\n");
    printf("   SetOption      : <0-Read Buffer ID Acccess Flag 1-MPI Management Control Settings(Unsupported)>\n");
    printf("   BufferID       : <Valid only if SetOption=0,Supported Bufferd ID=0x00(FW Download>\n");
    printf("   Access Flags   : <0-Read/Write Enabled 1-Read Disabled 2-Write Disabled 3-Read/Write Disabled>\n");
    printf("   UpdateSettings : <1)Current Session(Until Reset) 2)Future Sessions(Persistent) 3)All Sessions>\n");
    PrintRule(109);
}

bool ReadSetWords(const char *const *words, ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ *request) {
    uint32_t host = 0, option = 0, buffer = 0, flags = 0, update = 0;
    if (ParseUnsignedDecimal(WordAt(words, 0), &host) != 0 || host > kLastHostPort) {
        printf("Invalid HostPort Number\n");
        return false;
    }
    if (WordAt(words, 4) == nullptr) {
        printf("Incorrect number of arguments\n");
        return false;
    }
    if (ParseUnsignedDecimal(WordAt(words, 1), &option) != 0) {
        printf("Failed to get setoption\n");
        return false;
    }
    if (ParseUnsignedDecimal(WordAt(words, 2), &buffer) != 0 || buffer != ZENTREL_MPI_FW_DOWNLOAD_BUFFER) {
        printf("Failed to get valid BufferId.Only supported Buffer Id = 0x00\n");
        return false;
    }
    if (ParseUnsignedDecimal(WordAt(words, 3), &flags) != 0 || flags > ZENTREL_MPI_ACCESS_LAST) {
        printf("Invalid Access Flag Permission\n");
        return false;
    }
    if (ParseUnsignedDecimal(WordAt(words, 4), &update) != 0 || update > kLastUpdateSettings) {
        printf("Invalid settings permission\n");
        return false;
    }
    request->HostPort = static_cast<uint8_t>(host);
    request->SetOption = static_cast<uint8_t>(option);
    request->BufferId = static_cast<uint16_t>(buffer);
    request->AccessFlags = static_cast<uint8_t>(flags);
    request->UpdateSettings = static_cast<uint8_t>(update & 3u);
    return true;
}

// The menu offers buffer 0 only, enabled (flags 0) or disabled (flags 3).
bool AskSetRequest(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ *request) {
    PrintRule(46);
    printf("Set MPI Management Page: Buffer ID Access Permission: \n");
    PrintRule(46);
    uint32_t host = 0, option = 0, buffer = 0, flags = 0, update = 0;
    printf("Enter the Host Port Number: ");
    ScanDecimal(&host);
    if (host > kLastHostPort) {
        printf("Invalid Host Port Numer\n");
        return false;
    }
    printf("Enter the Set Option 0)Buffer ID 1)MPI Management Control Setting(Not Supported): ");
    ScanDecimal(&option);
    if (option != 0) {
        printf("Invalid selection\n");
        return false;
    }
    printf("Enter the Buffer ID (FW Download Buffer Id = 0): ");
    ScanDecimal(&buffer);
    if (buffer != 0) {
        printf("Invalid Buffer Id. Only supported Buffer Id = 0x00\n");
        return false;
    }
    printf("Buffer ID Access Flags (1-Read/Write Enabled 2-Read/Write Disabled): ");
    ScanDecimal(&flags);
    if (flags != 1 && flags != 2) {
        printf("Invalid Buffer ID Access Flags\n");
        return false;
    }
    printf("BufferID Flags Update settings 1)Current Session(Until Reset) 2)Future Sessions(Persistent) 3)All "
           "Sessions: ");
    ScanDecimal(&update);
    if (update < 1 || update > kLastUpdateSettings) {
        printf("Invalid BufferID Update Settings\n");
        return false;
    }
    request->HostPort = static_cast<uint8_t>(host);
    request->SetOption = ZENTREL_MPI_BUFFER_ACCESS;
    request->BufferId = ZENTREL_MPI_FW_DOWNLOAD_BUFFER;
    request->AccessFlags = flags == 1 ? 0 : ZENTREL_MPI_ACCESS_LAST;
    request->UpdateSettings = static_cast<uint8_t>(update);
    return true;
}

void PrintGetUsage() {
    PrintRule(84);
    printf("Usage: zentrelLibTest -i 0 -GetMpiMgmtPage <HostPortNum> <GetOption> <BufferID>\n");
    PrintRule(84);
    printf("   HostPortNum: <Valid Host Number to read Access Permissions>\n");
    printf("   GetOption  : <0-Read Buffer ID Acccess Flag 1-MPI Management Control Settings>\n");
    printf("   BufferID   : <Valid only if GetOption=0,Supported Bufferd ID=0x00(FW Download>\n");
    PrintRule(84);
}

// Any non-zero option is sent as given and needs no buffer id word.
bool ReadGetWords(const char *const *words, ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ *request) {
    uint32_t host = 0, option = 0, buffer = 0;
    if (ParseUnsignedDecimal(WordAt(words, 0), &host) != 0 || host > kLastHostPort) {
        printf("Invalid HostPort Number\n");
        return false;
    }
    const char *optionWord = WordAt(words, 1);
    if (optionWord == nullptr) {
        printf("Incorrect number of arguments\n");
        return false;
    }
    if (ParseUnsignedDecimal(optionWord, &option) != 0) {
        printf("Failed to get option\n");
        return false;
    }
    if (option == ZENTREL_MPI_BUFFER_ACCESS) {
        const char *bufferWord = WordAt(words, 2);
        if (bufferWord == nullptr) {
            printf("Incorrect number of arguments\n");
            return false;
        }
        if (ParseUnsignedDecimal(bufferWord, &buffer) != 0 || buffer != ZENTREL_MPI_FW_DOWNLOAD_BUFFER) {
            printf("Failed to get valid BufferId.Only supported Buffer Id = 0x00\n");
            return false;
        }
    }
    request->HostPort = static_cast<uint8_t>(host);
    request->GetOption = static_cast<uint8_t>(option);
    request->BufferId = static_cast<uint16_t>(buffer);
    return true;
}

bool AskGetRequest(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ *request) {
    PrintRule(46);
    printf("Get MPI Management Config Page Access: \n");
    PrintRule(46);
    uint32_t host = 0, option = 0, buffer = 0;
    printf("Enter the Host Port Number: ");
    ScanDecimal(&host);
    if (host > kLastHostPort) {
        printf("Invalid Host Port Numer\n");
        return false;
    }
    printf("Enter the Option to read 0)Buffer ID Access 1)MPI Mgmt Access Control Setting: ");
    ScanDecimal(&option);
    if (option == ZENTREL_MPI_BUFFER_ACCESS) {
        printf("Enter the Buffer ID (FW Download Buffer Id = 0): ");
        ScanDecimal(&buffer);
        if (buffer != 0) {
            printf("Invalid Buffer Id. Only supported Buffer Id = 0x00\n");
            return false;
        }
    } else if (option != ZENTREL_MPI_CONTROL_SETTING) {
        printf("Invalid selection\n");
        return false;
    }
    request->HostPort = static_cast<uint8_t>(host);
    request->GetOption = static_cast<uint8_t>(option);
    request->BufferId = static_cast<uint16_t>(buffer);
    return true;
}

}  // namespace

uint32_t SetMpiMgmtPage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (uint32_t result = CheckGeneration("Could not get the device information"); result != 0) return result;
    ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ asked = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintSetUsage();
            return 0;
        }
        if (!ReadSetWords(words, &asked)) return 1;
    } else if (!AskSetRequest(&asked)) {
        return 1;
    }
    auto *request = static_cast<PTR_ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ)));
    if (request == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_SET_MPI_MGMT_PAGE_ACCESS_REQ\n");
        return 5;
    }
    *request = asked;
    ZENTREL_STATUS status = ZentrelSwitchSetMpiMgmtPage(device, request);
    FreeBuffer(request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Set MPI Management Page Request failed\n");
        return 1;
    }
    printf("Set MPI Management Page Request successful\n");
    return 0;
}

uint32_t GetMpiMgmtPage(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (uint32_t result = CheckGeneration("Could not get the device information"); result != 0) return result;
    ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ asked = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintGetUsage();
            return 0;
        }
        if (!ReadGetWords(words, &asked)) return 1;
    } else if (!AskGetRequest(&asked)) {
        return 1;
    }
    auto *request = static_cast<PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ)));
    if (request == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_REQ\n");
        return 5;
    }
    auto *response = static_cast<PTR_ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP)));
    if (response == nullptr) {
        FreeBuffer(request);
        printf("Unable to allocate buffer for ZENTREL_SWITCH_GET_MPI_MGMT_PAGE_ACCESS_RESP\n");
        return 5;
    }
    *request = asked;
    ZENTREL_STATUS status = ZentrelSwitchGetMpiMgmtPage(device, request, response);
    uint32_t result = 0;
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Get MPI Management Page Request failed\n");
        result = 1;
    } else {
        printf("Get MPI Management Page Request successful\n");
        printf("Host Port Number: %d \n", response->HostPort);
        printf("Get Option: %d \n", response->GetOption);
        if (response->GetOption == ZENTREL_MPI_BUFFER_ACCESS) {
            printf("Buffer ID: %d \n", response->BufferId);
            printf("Buffer ID Access Flags: %d\n", response->Value);
        } else {
            printf("MPI Management Control settings: %d\n", response->Value);
        }
    }
    FreeBuffer(response);
    FreeBuffer(request);
    return result;
}
