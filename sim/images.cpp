// Firmware and PLDM downloads, SBR/MFG configuration slots, the unit
// specific data region and the manufacturing configuration page of the
// simulated switches.
#include <cstdio>
#include <cstring>

#include "sim.h"

namespace sim {

const char kFirmwareMagic[4] = {'Z', 'F', 'W', 'I'};
const char kPldmMagic[4] = {'P', 'L', 'D', 'M'};

namespace {

struct CrcTable {
    uint32_t entry[256];
    constexpr CrcTable() : entry() {
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i;
            for (int k = 0; k < 8; ++k) c = (c & 1u) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
            entry[i] = c;
        }
    }
};
constexpr CrcTable kCrcTable;

uint32_t Le32(const uint8_t *p) {
    return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 | static_cast<uint32_t>(p[2]) << 16 |
           static_cast<uint32_t>(p[3]) << 24;
}

// The first switch holds six SBR/MFG configurations, selected by its
// straps, and a unit specific data record; the second, older switch holds
// two, runs the second, and its unit specific data region is empty.
struct Defaults {
    uint32_t sbrSupported, sbrSelected;
    const char *serial;  // null: empty region
};
const Defaults kDefaults[] = {
    {6, 0, "ZS144A-2219-0473"},
    {2, 1, nullptr},
};

// A 64-byte unit specific data record: "ZUSD", format 1, the serial number
// in 24 bytes, then a MAC address and zero padding.
std::vector<uint8_t> DefaultUsd(const char *serial, size_t index) {
    std::vector<uint8_t> usd(64, 0);
    memcpy(usd.data(), "ZUSD", 4);
    usd[4] = 1;
    memcpy(usd.data() + 8, serial, strnlen(serial, 24));
    const uint8_t mac[6] = {0x00, 0x1B, 0x7C, 0x21, 0x90, static_cast<uint8_t>(0x40 + index)};
    memcpy(usd.data() + 32, mac, sizeof mac);
    return usd;
}

void SetImagesDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    ImagesModel &m = device.images;
    m.sbrSupported = d.sbrSupported;
    m.sbrSelected = d.sbrSelected;
    m.sbrMethod = 0;
    m.usd = d.serial != nullptr ? DefaultUsd(d.serial, index) : std::vector<uint8_t>();
    m.cfgPage.clear();
}

// {"supported": 1-6, "selected": n, "method": 0/1}
bool ReadSbrMfg(const Json &value, ImagesModel &m, Problem *error) {
    Field fields[] = {{"supported", &m.sbrSupported, ZENTREL_SBR_MFG_CFG_LAST + 1},
                      {"selected", &m.sbrSelected, ZENTREL_SBR_MFG_CFG_LAST},
                      {"method", &m.sbrMethod, 1}};
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error)) return false;
    if (m.sbrSupported == 0 || m.sbrSelected >= m.sbrSupported) {
        *error = "needs 1 to 6 configurations, the selected one among them";
        return false;
    }
    return true;
}

int ApplyImagesKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    ImagesModel &m = device.images;
    if (key == "sbrMfgConfig") return Took(ReadSbrMfg(value, m, error));
    if (key == "usdData") return Took(ReadHexBytes(value, ZENTREL_USD_REGION_MAX, &m.usd, error));
    if (key == "mfgCfgPage") return Took(ReadHexBytes(value, kCfgPageMax, &m.cfgPage, error));
    return 0;
}

std::string VersionText(uint32_t v) {
    char text[20];
    snprintf(text, sizeof text, "%u.%u.%u.%u", v >> 24, v >> 16 & 0xFFu, v >> 8 & 0xFFu, v & 0xFFu);
    return text;
}

// Everything here is in flash. A download writes the firmware version into
// the device information and the manufacturing information, whose parts
// read these keys back.
void SaveImages(const Device &device, Json *flash, Json *) {
    const ImagesModel &m = device.images;
    const uint8_t *mfg = device.settings.mfg.FwVersion;
    (*flash)["fwVersion"] = VersionText(device.info.FwVersion);
    (*flash)["mfgFwVersion"] = VersionText(static_cast<uint32_t>(mfg[0]) << 24 | mfg[1] << 16 | mfg[2] << 8 | mfg[3]);
    (*flash)["sbrMfgConfig"] = {{"supported", m.sbrSupported}, {"selected", m.sbrSelected}, {"method", m.sbrMethod}};
    (*flash)["usdData"] = WriteHexBytes(m.usd);
    (*flash)["mfgCfgPage"] = WriteHexBytes(m.cfgPage);
}

// A firmware image or PLDM package the switch takes becomes its firmware.
ZENTREL_STATUS Install(Call &call, const uint8_t *image, uint32_t length, const char (&magic)[4]) {
    if (image == nullptr) return call.Return(kStatusInvalidParameter);
    Device &d = call.Target();
    uint32_t version = 0;
    ZENTREL_STATUS refused = CheckImage(image, length, magic, d.info.DeviceId, &version);
    if (refused != ZENTREL_STATUS_SUCCESS) return call.Return(refused);
    d.info.FwVersion = version;
    for (int i = 0; i < 4; ++i) d.settings.mfg.FwVersion[i] = static_cast<uint8_t>(version >> (24 - 8 * i));
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// A download that replaces one of the switch's byte regions with 1 to max
// bytes.
ZENTREL_STATUS Replace(const char *function, PTR_ZENTREL_DEVICE device, const uint8_t *image, uint32_t length,
                       size_t max, std::vector<uint8_t> ImagesModel::*region) {
    Call call(function);
    call.Dev(device);
    if (!call.Proceed()) return call.Result();
    if (image == nullptr || length == 0 || length > max) return call.Return(kStatusInvalidParameter);
    (call.Target().images.*region).assign(image, image + length);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

}  // namespace

uint32_t Crc32(const uint8_t *bytes, size_t count) {
    uint32_t c = 0xFFFFFFFFu;
    for (size_t i = 0; i < count; ++i) c = kCrcTable.entry[(c ^ bytes[i]) & 0xFFu] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

ZENTREL_STATUS CheckImage(const uint8_t *image, size_t length, const char (&magic)[4], uint16_t deviceId,
                          uint32_t *version) {
    if (length < kImageHeaderBytes || memcmp(image, magic, sizeof magic) != 0 || Le32(image + 4) != kImageFormat)
        return kStatusNotAnImage;
    uint32_t payload = Le32(image + 16);
    if (length - kImageHeaderBytes != payload) return kStatusImageLength;
    if (Crc32(image + kImageHeaderBytes, payload) != Le32(image + 20)) return kStatusImageChecksum;
    uint32_t target = Le32(image + 12);
    if (target != 0 && target != deviceId) return kStatusImageDevice;
    *version = Le32(image + 8);
    return ZENTREL_STATUS_SUCCESS;
}

extern const ModelPart kImagesPart = {
    "images", SetImagesDefaults, ApplyImagesKey, SaveImages, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchDownloadFirmware(PTR_ZENTREL_DEVICE Device, uint32_t Reserved1,
                                                         uint32_t Reserved2, uint32_t Reserved3, uint8_t *Image,
                                                         uint32_t ImageLength) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Reserved1 != 0 || Reserved2 != 0 || Reserved3 != 0) return call.Return(sim::kStatusInvalidParameter);
    return sim::Install(call, Image, ImageLength, sim::kFirmwareMagic);
}

// The request repeats the image and its length; both must agree with the
// arguments.
ZENTREL_STATUS simlib::ZentrelSwitchDownloadPldmFirmware(PTR_ZENTREL_DEVICE Device,
                                                             PTR_ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ Request,
                                                             uint8_t *Image, uint32_t ImageLength) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Reserved0 != 0 || Request->Reserved4 != 0 || Request->Reserved8 != 0 ||
        Request->Image != Image || Request->ImageLength != ImageLength)
        return call.Return(sim::kStatusInvalidParameter);
    return sim::Install(call, Image, ImageLength, sim::kPldmMagic);
}

// A set selects a configuration the switch holds and fills the selected
// one; a get fills all three outputs.
ZENTREL_STATUS simlib::ZentrelSwitchSBRMFGConfiguration(PTR_ZENTREL_DEVICE Device,
                                                            PTR_ZENTREL_SWITCH_SBR_MFG_CFG_REQ Request) {
    Call call(__func__);
    call.Dev(Device);
    if (Request != nullptr) {
        std::string outputs;
        if (Request->SelectionMethod != nullptr) outputs += "method ";
        if (Request->Selected != nullptr) outputs += "selected ";
        if (Request->Supported != nullptr) outputs += "supported ";
        if (!outputs.empty()) outputs.pop_back();
    }
    if (!call.Proceed()) return call.Result();
    if (Request == nullptr || Request->Selected == nullptr) return call.Return(sim::kStatusInvalidParameter);
    sim::ImagesModel &m = call.Target().images;
    if (Request->Operation == ZENTREL_SBR_MFG_CFG_SET) {
        if (Request->Configuration >= m.sbrSupported) return call.Return(sim::kStatusInvalidParameter);
        m.sbrSelected = Request->Configuration;
        m.sbrMethod = 1;
    } else if (Request->Operation == ZENTREL_SBR_MFG_CFG_GET) {
        if (Request->SelectionMethod == nullptr || Request->Supported == nullptr)
            return call.Return(sim::kStatusInvalidParameter);
        *Request->SelectionMethod = m.sbrMethod;
        *Request->Supported = m.sbrSupported;
    } else {
        return call.Return(sim::kStatusInvalidParameter);
    }
    *Request->Selected = m.sbrSelected;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The data replaces the region's; an empty or over-long one is refused.
ZENTREL_STATUS simlib::ZentrelSwitchDownloadUnitSpecificData(PTR_ZENTREL_DEVICE Device, uint8_t *Image,
                                                                 uint32_t ImageLength) {
    return sim::Replace(__func__, Device, Image, ImageLength, ZENTREL_USD_REGION_MAX, &sim::ImagesModel::usd);
}

// Without a buffer: the region's size. With one: the region, when *Size
// bytes hold it.
ZENTREL_STATUS simlib::ZentrelSwitchUploadUnitSpecificData(PTR_ZENTREL_DEVICE Device, uint8_t *Buffer,
                                                               uint32_t *Size) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Size == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const std::vector<uint8_t> &usd = call.Target().images.usd;
    if (Buffer != nullptr) {
        if (*Size < usd.size()) return call.Return(sim::kStatusInvalidParameter);
        if (!usd.empty()) memcpy(Buffer, usd.data(), usd.size());
    }
    *Size = static_cast<uint32_t>(usd.size());
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The page replaces the switch's; an empty one, or one of more than 4096
// bytes, is refused.
ZENTREL_STATUS simlib::ZentrelSwitchDownloadMfgCfgPage(PTR_ZENTREL_DEVICE Device, uint8_t *Image,
                                                           uint32_t ImageLength) {
    return sim::Replace(__func__, Device, Image, ImageLength, sim::kCfgPageMax, &sim::ImagesModel::cfgPage);
}
