#include "discovery.h"

#include <cstdio>
#include <cstring>

#include "helpers.h"
#include "input.h"
#include "menu.h"

uint32_t gSelectedDeviceHandle = 0xFF;
uint32_t gDevicesFound = 0;
uint32_t gSelectedDeviceIndex = 0;

namespace {

const char kDeviceInfoFailed[] = "ZentrelGetDeviceInfo ().. Failed Status -  %x \n";

// Listing always announces the default switch address, whatever was typed.
constexpr uint32_t kAnnouncedAddress = 0x59;

struct AddressTexts {
    const char *address;
    const char *smbus;
    const char *bus;
    const char *device;
    const char *function;
};

// Converts the texts into a discovery request; 1 on the first bad text.
int BuildRequest(const AddressTexts &texts, ZENTREL_DISCOVERY_REQ *request) {
    int32_t address = 0, smbus = 0, bus = 0, device = 0, function = 0;
    if (ParseHex(texts.address, &address) != 0) {
        printf("Address value input error.\n");
        return 1;
    }
    if (ParseDecimal(texts.smbus, &smbus) != 0) {
        printf("SMbus value input error.\n");
        return 1;
    }
    if (texts.bus != nullptr) {
        if (ParseHex(texts.bus, &bus) != 0) {
            printf("pciec bus value input error.\n");
            return 1;
        }
        if (ParseHex(texts.device, &device) != 0) {
            printf("pciec dev value input error.\n");
            return 1;
        }
        if (ParseHex(texts.function, &function) != 0) {
            printf("pciec func value input error.\n");
            return 1;
        }
    }
    memset(request, 0, sizeof *request);
    request->FixedWord = ZENTREL_DISCOVERY_FIXED_WORD;
    request->FixedByte = ZENTREL_DISCOVERY_FIXED_BYTE;
    request->SmbusNumber = static_cast<uint16_t>(smbus);
    request->DeviceAddress = static_cast<uint32_t>(address);
    request->PcieBus = static_cast<uint8_t>(bus);
    request->PcieDevice = static_cast<uint8_t>(device);
    request->PcieFunction = static_cast<uint8_t>(function);
    return 0;
}

// Runs the discovery and reads the device count; 1 after printing a failure.
int Discover(uint32_t mode, ZENTREL_DISCOVERY_REQ *request, uint32_t *count) {
    ZENTREL_STATUS status = ZentrelDiscoverDevices(mode, request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentrelDiscoverDevices ().. Failed Status -  %x \n", status);
        return 1;
    }
    status = ZentrelGetDeviceCount(count);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("ZentreliGetProductCount ().. Failed Status -  %x \n", status);
        return 1;
    }
    printf("Num of Devices found - %d \n \n", static_cast<int>(*count));
    return 0;
}

int ReadDeviceInfo(uint32_t index, ZENTREL_DEVICE_INFO *info) {
    ZENTREL_STATUS status = ZentrelGetDeviceInfo(index, ZENTREL_DEVICE_INFO_LENGTH, info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(kDeviceInfoFailed, status);
        return 1;
    }
    return 0;
}

}  // namespace

int PrintSwitchDetails(const ZENTREL_DEVICE_INFO *info) {
    printf("\nSwitch Details \n");
    printf("Handle = 0x%x \n", info->Handle);
    printf("Device Id = 0x%X \n", info->DeviceId);
    printf("FW Version = %d.%d.%d.%d\r\n", static_cast<int>(VersionByte(info->FwVersion, 0)),
           static_cast<int>(VersionByte(info->FwVersion, 1)), static_cast<int>(VersionByte(info->FwVersion, 2)),
           static_cast<int>(VersionByte(info->FwVersion, 3)));
    printf("SM API Version = %d.%d\r\n", static_cast<int>(VersionByte(info->SmApiVersion, 0)),
           static_cast<int>(VersionByte(info->SmApiVersion, 1)));
    return 0;
}

int ListDevices(const char *addressText, const char *smbusText) {
    ZENTREL_DISCOVERY_REQ request;
    if (BuildRequest({addressText, smbusText, nullptr, nullptr, nullptr}, &request) != 0) return 1;
    printf("value of DeviceAddress is %x\n", kAnnouncedAddress);
    uint32_t count = 0;
    if (Discover(ZENTREL_DISCOVERY_MODE_LIST, &request, &count) != 0) return 1;
    for (uint32_t index = 0; index < count; ++index) {
        ZENTREL_DEVICE_INFO info;
        memset(&info, 0, sizeof info);
        if (ReadDeviceInfo(index, &info) != 0) return 1;
        if (info.ProductType != ZENTREL_PRODUCT_TYPE_SWITCH) continue;
        printf("\n");
        printf("Handle %d - Switch Details as below.... \n", static_cast<int>(index));
        printf("\n");
        PrintSwitchDetails(&info);
    }
    return 0;
}

int DiscoverByAddress(int dispatchFlag, const char *addressText, const char *smbusText, const char *busText,
                      const char *deviceText, const char *functionText) {
    ZENTREL_DISCOVERY_REQ request;
    if (BuildRequest({addressText, smbusText, busText, deviceText, functionText}, &request) != 0) return 1;
    if (Discover(ZENTREL_DISCOVERY_MODE_ADDRESS, &request, &gDevicesFound) != 0) return 1;
    if (dispatchFlag) return 0;  // one-shot mode selects the device by its own index

    ZENTREL_DEVICE_INFO info;
    for (uint32_t index = 0; index < gDevicesFound; ++index) {
        memset(&info, 0, sizeof info);
        if (ReadDeviceInfo(index, &info) != 0) return 1;
    }
    if (SelectDevice(gDevicesFound) != 0) return 1;
    memset(&info, 0, sizeof info);
    if (ReadDeviceInfo(gSelectedDeviceIndex, &info) != 0) return 1;
    if (info.ProductType != ZENTREL_PRODUCT_TYPE_SWITCH) return 0;
    return RunMenu(&info);
}

int SelectDevice(uint32_t deviceCount) {
    for (;;) {
        printf("Please select a device index(0 based) to test with: ");
        FlushInput();
        ScanDecimal(&gSelectedDeviceIndex);
        if (gSelectedDeviceIndex < deviceCount) break;
        // The prompt repeats until a valid index is typed; once the input
        // has ended or failed no answer can come, so stop instead of spinning.
        if (InputEnded()) {
            printf("\n");
            return 1;
        }
    }
    if (deviceCount == 1) {
        gSelectedDeviceIndex = 0;
        printf("Only one device present. Selected device = %d\n", 0);
    }
    ZENTREL_DEVICE_INFO info;
    memset(&info, 0, sizeof info);
    if (ReadDeviceInfo(gSelectedDeviceIndex, &info) != 0) return 1;
    gSelectedDeviceHandle = info.Handle;
    return 0;
}
