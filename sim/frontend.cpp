// Library session, discovery and device information of the simulated switches.
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

// Two switches behind one SMBus segment: a current-generation switch of the
// main family and an older one of the alternate (0xC034) family.
struct Defaults {
    uint32_t fwVersion;
    uint32_t apiVersion;
    uint32_t generation;
    uint16_t deviceId;
    uint32_t productNumber;
    uint8_t pcieBus;
};
const Defaults kDefaults[] = {
    {0x04140A02, 0x02030000, 3, 0xC010, 0x00009A10, 0x01},
    {0x03050211, 0x02010000, 1, 0xC034, 0x00009A34, 0x05},
};

// {"offset": [byte, ...], ...}: raw bytes of the device information record.
bool ReadInfoBytes(const Json &value, ZENTREL_DEVICE_INFO *info, Problem *error) {
    if (!value.is_object()) {
        *error = "must map offsets to lists of bytes";
        return false;
    }
    uint8_t *raw = reinterpret_cast<uint8_t *>(info);
    for (auto it = value.begin(); it != value.end(); ++it) {
        uint64_t offset = 0, byte = 0;
        if (!ReadNumber(Json(it.key()), sizeof *info - 1, &offset, error)) return error->In(it.key());
        if (!it->is_array() || offset + it->size() > sizeof *info) {
            *error = "must be a list of bytes that ends within the 1392 bytes";
            return error->In(it.key());
        }
        for (size_t i = 0; i < it->size(); ++i) {
            if (!ReadNumber((*it)[i], 0xFF, &byte, error)) return error->At(i), error->In(it.key());
            raw[offset + i] = static_cast<uint8_t>(byte);
        }
    }
    return true;
}

void SetFrontendDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    memset(&device.info, 0, sizeof device.info);
    device.info.Handle = 0x100 + static_cast<uint32_t>(index);
    device.info.FwVersion = d.fwVersion;
    device.info.SmApiVersion = d.apiVersion;
    device.info.DeviceGeneration = d.generation;
    device.info.DeviceId = d.deviceId;
    device.info.ProductNumber = d.productNumber;
    device.info.ProductType = ZENTREL_PRODUCT_TYPE_SWITCH;
    device.smbusAddress = 0x59;
    device.smbusBus = 1;
    device.pcieBus = static_cast<uint8_t>(index < 2 ? d.pcieBus : 0x10 + index);
    device.pcieDevice = 0;
    device.pcieFunction = 0;
}

int ApplyFrontendKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    ZENTREL_DEVICE_INFO &info = device.info;
    if (key == "handle") return Took(Store(value, &info.Handle, error));
    if (key == "fwVersion") return Took(ReadVersion(value, &info.FwVersion, error));
    if (key == "apiVersion") return Took(ReadVersion(value, &info.SmApiVersion, error));
    if (key == "generation") return Took(Store(value, &info.DeviceGeneration, error));
    if (key == "deviceId") return Took(Store(value, &info.DeviceId, error));
    if (key == "productNumber") return Took(Store(value, &info.ProductNumber, error));
    if (key == "productType") return Took(Store(value, &info.ProductType, error));
    if (key == "infoBytes") return Took(ReadInfoBytes(value, &info, error));
    if (key == "smbusAddress") return Took(Store(value, &device.smbusAddress, error));
    if (key == "smbusBus") return Took(Store(value, &device.smbusBus, error));
    if (key == "pcieBus") return Took(Store(value, &device.pcieBus, error));
    if (key == "pcieDevice") return Took(Store(value, &device.pcieDevice, error));
    if (key == "pcieFunction") return Took(Store(value, &device.pcieFunction, error));
    return 0;
}

}  // namespace

// Nothing of the device information changes at run time.
extern const ModelPart kFrontendPart = {
    "frontend", SetFrontendDefaults, ApplyFrontendKey, nullptr, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelInitialize(void) {
    Call call(__func__);
    if (!call.Proceed(false)) return call.Result();
    sim::State &model = call.Model();
    if (!sim::LoadStateFile(model.devices)) {
        model.unusable = true;
        return call.Return(sim::kStatusFailure);
    }
    model.initialized = true;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelExit(void) {
    Call call(__func__);
    if (!call.Proceed()) return call.Result();
    sim::SaveStateFile(call.Model().devices);
    call.Model().initialized = false;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// Over SMBus (a device address is given) a switch answers when its address
// and segment match. In band (address 0) every switch answers to a PCIe
// location of 0/0/0, otherwise only the one at that bus, device and function.
ZENTREL_STATUS simlib::ZentrelDiscoverDevices(uint32_t Mode, PTR_ZENTREL_DISCOVERY_REQ Request) {
    Call call(__func__);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || (Mode != ZENTREL_DISCOVERY_MODE_LIST && Mode != ZENTREL_DISCOVERY_MODE_ADDRESS) ||
        Request->FixedWord != ZENTREL_DISCOVERY_FIXED_WORD || Request->FixedByte != ZENTREL_DISCOVERY_FIXED_BYTE)
        return call.Return(sim::kStatusInvalidParameter);
    sim::State &model = call.Model();
    model.found.clear();
    const ZENTREL_DISCOVERY_REQ &r = *Request;
    bool anyLocation = r.PcieBus == 0 && r.PcieDevice == 0 && r.PcieFunction == 0;
    for (size_t i = 0; i < model.devices.size(); ++i) {
        const sim::Device &d = model.devices[i];
        bool match;
        if (r.DeviceAddress != 0)
            match = d.smbusAddress == r.DeviceAddress && d.smbusBus == r.SmbusNumber;
        else
            match = anyLocation ||
                    (d.pcieBus == r.PcieBus && d.pcieDevice == r.PcieDevice && d.pcieFunction == r.PcieFunction);
        if (match) model.found.push_back(i);
    }
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelGetDeviceCount(uint32_t *Count) {
    Call call(__func__);
    if (!call.Proceed()) return call.Result();
    if (Count == nullptr) return call.Return(sim::kStatusInvalidParameter);
    *Count = static_cast<uint32_t>(call.Model().found.size());
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelGetDeviceInfo(uint32_t Index, uint32_t Length, PTR_ZENTREL_DEVICE_INFO Info) {
    Call call(__func__);
    if (!call.Proceed()) return call.Result();
    sim::State &model = call.Model();
    if (Info == nullptr || Length != ZENTREL_DEVICE_INFO_LENGTH) return call.Return(sim::kStatusInvalidParameter);
    // The index of a found switch, or the handle of one.
    const sim::Device *found = nullptr;
    if (Index < model.found.size()) {
        found = &model.devices[model.found[Index]];
    } else {
        for (size_t i : model.found)
            if (model.devices[i].info.Handle == Index) found = &model.devices[i];
    }
    if (found == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::Device &device = *found;
    memcpy(Info, &device.info, sizeof *Info);
    // Reading a switch also caches its manufacturing information.
    sim::CacheMfgInfo(device);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
