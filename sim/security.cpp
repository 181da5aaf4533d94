// Secure boot state and SPDM certificate slots of the simulated switches.
#include <cstring>

#include "sim.h"

namespace sim {

namespace {

using Bytes = std::vector<uint8_t>;

// --- A few DER encodings, enough for a certificate and a CSR -------------

Bytes Tlv(uint8_t tag, const Bytes &content) {
    Bytes out{tag};
    size_t n = content.size();
    if (n < 0x80) {
        out.push_back(static_cast<uint8_t>(n));
    } else if (n < 0x100) {
        out.insert(out.end(), {0x81, static_cast<uint8_t>(n)});
    } else {
        out.insert(out.end(), {0x82, static_cast<uint8_t>(n >> 8), static_cast<uint8_t>(n)});
    }
    out.insert(out.end(), content.begin(), content.end());
    return out;
}

Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes &p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}

Bytes Sequence(std::initializer_list<Bytes> parts) {
    return Tlv(0x30, Join(parts));
}

Bytes Text(const std::string &text) {  // UTF8String
    return Tlv(0x0C, Bytes(text.begin(), text.end()));
}

const Bytes kOidCommonName = {0x06, 0x03, 0x55, 0x04, 0x03};
const Bytes kOidEcPublicKey = {0x06, 0x07, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x02, 0x01};
const Bytes kOidSecp384r1 = {0x06, 0x05, 0x2B, 0x81, 0x04, 0x00, 0x22};
const Bytes kOidEcdsaSha384 = {0x06, 0x08, 0x2A, 0x86, 0x48, 0xCE, 0x3D, 0x04, 0x03, 0x03};

Bytes Name(const std::string &commonName) {
    return Sequence({Tlv(0x31, Sequence({kOidCommonName, Text(commonName)}))});
}

// The slot's P-384 public key: an uncompressed point of believable bytes.
Bytes PublicKeyInfo(uint32_t handle, uint32_t slot) {
    Bytes point(98, 0);  // unused-bits byte, 0x04, X and Y
    point[1] = 0x04;
    Filler(handle << 8 | slot).Bytes(point.data() + 2, 96);
    return Sequence({Sequence({kOidEcPublicKey, kOidSecp384r1}), Tlv(0x03, point)});
}

// An ECDSA signature shape of believable bytes; nothing can verify it.
Bytes Signature(uint32_t seed) {
    Bytes r(48), s(48);
    Filler filler(seed);
    filler.Bytes(r.data(), r.size());
    filler.Bytes(s.data(), s.size());
    r[0] &= 0x7F;  // positive INTEGERs
    s[0] &= 0x7F;
    Bytes value = Sequence({Tlv(0x02, r), Tlv(0x02, s)});
    value.insert(value.begin(), 0x00);
    return Tlv(0x03, value);
}

std::string SlotName(uint32_t handle, uint32_t slot) {
    char text[64];
    snprintf(text, sizeof text, "Corvane switch %04X slot %u", handle, slot);
    return text;
}

// A PKCS#10 certification request for the slot's key.
Bytes Csr(uint32_t handle, uint32_t slot) {
    Bytes info = Sequence({Tlv(0x02, {0x00}), Name(SlotName(handle, slot)), PublicKeyInfo(handle, slot), Tlv(0xA0, {})});
    return Sequence({info, Sequence({kOidEcdsaSha384}), Signature(handle ^ 0xC5Bu ^ slot)});
}

// The certificate a switch leaves the factory with in its first slot.
Bytes FactoryCertificate(uint32_t handle, uint32_t slot) {
    const std::string from = "260101000000Z", to = "460101000000Z";
    Bytes tbs = Sequence({Tlv(0xA0, Tlv(0x02, {0x02})), Tlv(0x02, {0x01, static_cast<uint8_t>(handle >> 8), static_cast<uint8_t>(handle)}),
                          Sequence({kOidEcdsaSha384}), Name("Corvane device CA"),
                          Sequence({Tlv(0x17, Bytes(from.begin(), from.end())), Tlv(0x17, Bytes(to.begin(), to.end()))}),
                          Name(SlotName(handle, slot)), PublicKeyInfo(handle, slot)});
    return Sequence({tbs, Sequence({kOidEcdsaSha384}), Signature(handle ^ 0xCA0u ^ slot)});
}

// True when the bytes are one DER SEQUENCE whose length is that of the file.
bool IsCertificate(const Bytes &der) {
    if (der.size() < 2 || der[0] != 0x30) return false;
    size_t length = 0, header = 2;
    uint8_t first = der[1];
    if (first < 0x80) {
        length = first;
    } else if (first == 0x81 || first == 0x82) {
        header = 2 + (first & 0x7F);
        if (der.size() < header) return false;
        for (size_t i = 2; i < header; ++i) length = length << 8 | der[i];
    } else {
        return false;  // indefinite, or longer than a slot holds
    }
    return header + length == der.size();
}

// --- Defaults --------------------------------------------------------------

struct SlotDefault {
    uint8_t group;
    bool occupied, sealed;
};

struct Defaults {
    uint8_t bootMode, bootEnabled, securityVersion, keySlotsInUse, keySlotsFuture, keyHash, imageHash, signing;
    uint8_t groups, slotCount;
    SlotDefault slots[ZENTREL_SPDM_MAX_SLOTS];
    uint8_t versionCount;
    uint32_t asymMask, hashMask, asym, hash;
};

// The first switch boots hard-secure with two programmed keys and offers
// two slot groups of two slots, SPDM up to 1.2; its factory slot is sealed
// and slot 2 holds a certificate. The second, older switch is configured
// secure without secure boot, with one group of two slots and SPDM up to 1.1.
const Defaults kDefaults[] = {
    {ZENTREL_SECURE_BOOT_HARD_SECURE, 1, 3, 2, 6, ZENTREL_SECURE_BOOT_HASH_SHA3_384, ZENTREL_SECURE_BOOT_HASH_SHA3_512,
     ZENTREL_SECURE_BOOT_SIGN_RSA_4K, 2, 4,
     {{0, true, true}, {0, false, false}, {1, true, false}, {1, false, false}}, 3,
     ZENTREL_SPDM_ASYM_ECDSA_P256 | ZENTREL_SPDM_ASYM_RSAPSS_3072 | ZENTREL_SPDM_ASYM_ECDSA_P384,
     ZENTREL_SPDM_HASH_SHA_256 | ZENTREL_SPDM_HASH_SHA_384 | ZENTREL_SPDM_HASH_SHA3_384, ZENTREL_SPDM_ASYM_ECDSA_P384,
     ZENTREL_SPDM_HASH_SHA_384},
    {ZENTREL_SECURE_BOOT_CONFIG_SECURE, 0, 1, 1, 7, ZENTREL_SECURE_BOOT_HASH_SHA3_384, ZENTREL_SECURE_BOOT_HASH_SHA3_384,
     ZENTREL_SECURE_BOOT_SIGN_RSA_3K, 1, 2, {{0, true, true}, {0, false, false}}, 2, ZENTREL_SPDM_ASYM_ECDSA_P256,
     ZENTREL_SPDM_HASH_SHA_256, ZENTREL_SPDM_ASYM_ECDSA_P256, ZENTREL_SPDM_HASH_SHA_256},
};

// SPDM 1.0, 1.1, 1.2, ...: major in the low nibble, minor in the high one.
ZENTREL_SPDM_VERSION SpdmVersion(uint8_t minor) {
    return {static_cast<uint8_t>(minor << 4 | 1), 0};
}

void SetSecurityDefaults(Device &device, size_t index) {
    const Defaults &d = kDefaults[index < 2 ? index : 0];
    SecurityModel &s = device.security;
    uint32_t handle = device.info.Handle;
    ZENTREL_SWITCH_SECURE_BOOT_INFO &b = s.secureBoot;
    memset(&b, 0, sizeof b);
    b.Mode = d.bootMode;
    b.Enabled = d.bootEnabled;
    b.SecurityVersion = d.securityVersion;
    b.KeySlotsInUse = d.keySlotsInUse;
    b.KeySlotsFuture = d.keySlotsFuture;
    b.KeyDigestHashAlgo = d.keyHash;
    b.ImageDigestHashAlgo = d.imageHash;
    b.ImageSigningAlgo = d.signing;
    Filler key(handle ^ 0x5EC0u);
    for (uint32_t &w : b.PublicKey) w = key.Word();
    Filler digests(handle ^ 0xD16u);
    for (uint32_t k = 0; k < d.keySlotsInUse; ++k)
        for (uint32_t &w : b.KeyDigests[k]) w = digests.Word();
    s.slotGroupCount = d.groups;
    s.slotCount = d.slotCount;
    for (uint32_t i = 0; i < ZENTREL_SPDM_MAX_SLOTS; ++i) {
        const SlotDefault &slot = d.slots[i];
        s.slots[i] = {slot.group, slot.occupied, slot.sealed, slot.occupied ? FactoryCertificate(handle, i) : Bytes{}};
    }
    memset(s.versions, 0, sizeof s.versions);
    for (uint8_t v = 0; v < d.versionCount; ++v) s.versions[v] = SpdmVersion(v);
    s.versionCount = d.versionCount;
    s.currentVersion = static_cast<uint8_t>(d.versionCount - 1);
    s.baseAsymAlgo = d.asymMask;
    s.baseHashAlgo = d.hashMask;
    s.asymAlgo = d.asym;
    s.hashAlgo = d.hash;
}

// --- Scenario and state keys -------------------------------------------------

bool ReadWords(const Json &value, uint32_t *words, size_t count, Problem *error) {
    if (!value.is_array() || value.size() > count) {
        *error = "must be a list of at most " + std::to_string(count) + " words";
        return false;
    }
    for (size_t i = 0; i < value.size(); ++i)
        if (!Store(value[i], &words[i], error)) return error->At(i);
    return true;
}

bool ReadSecureBoot(const Json &value, ZENTREL_SWITCH_SECURE_BOOT_INFO *b, Problem *error) {
    uint32_t mode = b->Mode, enabled = b->Enabled, svn = b->SecurityVersion, inUse = b->KeySlotsInUse,
             future = b->KeySlotsFuture, keyHash = b->KeyDigestHashAlgo, imageHash = b->ImageDigestHashAlgo,
             signing = b->ImageSigningAlgo;
    Field fields[] = {
        {"mode", &mode, 0xFF}, {"enabled", &enabled, 0xFF}, {"securityVersion", &svn, 0xFF},
        {"keySlotsInUse", &inUse, 0xFF}, {"keySlotsFuture", &future, 0xFF}, {"keyDigestHash", &keyHash, 0xFF},
        {"imageDigestHash", &imageHash, 0xFF}, {"imageSigning", &signing, 0xFF},
    };
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error, {"publicKey", "keyDigests"})) return false;
    if (const Json *key = Member(value, "publicKey"))
        if (!ReadWords(*key, b->PublicKey, ZENTREL_SECURE_BOOT_PUBLIC_KEY_WORDS, error)) return error->In("publicKey");
    if (const Json *digests = Member(value, "keyDigests")) {
        if (!digests->is_array() || digests->size() > ZENTREL_SECURE_BOOT_KEY_SLOTS) {
            *error = "must be a list of at most 8 digests";
            return error->In("keyDigests");
        }
        for (size_t k = 0; k < digests->size(); ++k)
            if (!ReadWords((*digests)[k], b->KeyDigests[k], ZENTREL_SECURE_BOOT_DIGEST_WORDS, error))
                return error->At(k), error->In("keyDigests");
    }
    b->Mode = static_cast<uint8_t>(mode);
    b->Enabled = static_cast<uint8_t>(enabled);
    b->SecurityVersion = static_cast<uint8_t>(svn);
    b->KeySlotsInUse = static_cast<uint8_t>(inUse);
    b->KeySlotsFuture = static_cast<uint8_t>(future);
    b->KeyDigestHashAlgo = static_cast<uint8_t>(keyHash);
    b->ImageDigestHashAlgo = static_cast<uint8_t>(imageHash);
    b->ImageSigningAlgo = static_cast<uint8_t>(signing);
    return true;
}

// [{"slot": i, "group": g, "occupied": 0/1, "sealed": 0/1, "certificate": "hex"}, ...]
bool ReadSlots(const Json &list, SecurityModel &s, Problem *error) {
    if (!list.is_array()) {
        *error = "must be a list of slots";
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        const Json &entry = list[i];
        const Json *number = Member(entry, "slot");
        uint32_t index = 0;
        if (number == nullptr) {
            *error = "each slot needs \"slot\" from 0 to 7";
            return error->At(i);
        }
        if (!Store(*number, &index, error, ZENTREL_SPDM_MAX_SLOTS - 1)) return error->In("slot"), error->At(i);
        SpdmSlot &slot = s.slots[index];
        uint32_t group = slot.group, occupied = slot.occupied, sealed = slot.sealed;
        Field fields[] = {{"group", &group, 0xFF}, {"occupied", &occupied, 1}, {"sealed", &sealed, 1}};
        if (!ReadFields(entry, fields, 3, error, {"slot", "certificate"})) return error->At(i);
        if (const Json *certificate = Member(entry, "certificate"))
            if (!ReadHexBytes(*certificate, kMaxCertificateBytes, &slot.certificate, error))
                return error->In("certificate"), error->At(i);
        slot.group = static_cast<uint8_t>(group);
        slot.occupied = occupied != 0;
        slot.sealed = sealed != 0;
        if (!slot.occupied) slot.certificate.clear();
    }
    return true;
}

// [[majorMinor, third], ...]
bool ReadVersions(const Json &list, SecurityModel &s, Problem *error) {
    if (!list.is_array() || list.size() > ZENTREL_SPDM_MAX_VERSIONS) {
        *error = "must be a list of at most 5 versions";
        return false;
    }
    for (size_t i = 0; i < list.size(); ++i) {
        const Json &pair = list[i];
        if (!pair.is_array() || pair.size() != 2) {
            *error = "must be [byte, byte]";
            return error->At(i);
        }
        if (!Store(pair[0], &s.versions[i].MajorMinor, error) || !Store(pair[1], &s.versions[i].Third, error))
            return error->At(i);
    }
    s.versionCount = static_cast<uint8_t>(list.size());
    return true;
}

bool ReadSpdm(const Json &value, SecurityModel &s, Problem *error) {
    uint32_t groups = s.slotGroupCount, count = s.slotCount, current = s.currentVersion;
    Field fields[] = {
        {"slotGroupCount", &groups, 0xFF},
        {"slotCount", &count, ZENTREL_SPDM_MAX_SLOTS},
        {"currentVersion", &current, ZENTREL_SPDM_MAX_VERSIONS - 1},
        {"baseAsymAlgo", &s.baseAsymAlgo, UINT32_MAX},
        {"baseHashAlgo", &s.baseHashAlgo, UINT32_MAX},
        {"asymAlgo", &s.asymAlgo, UINT32_MAX},
        {"hashAlgo", &s.hashAlgo, UINT32_MAX},
    };
    if (!ReadFields(value, fields, sizeof fields / sizeof fields[0], error, {"slots", "versions"})) return false;
    s.slotGroupCount = static_cast<uint8_t>(groups);
    s.slotCount = static_cast<uint8_t>(count);
    s.currentVersion = static_cast<uint8_t>(current);
    if (const Json *versions = Member(value, "versions"))
        if (!ReadVersions(*versions, s, error)) return error->In("versions");
    if (const Json *slots = Member(value, "slots"))
        if (!ReadSlots(*slots, s, error)) return error->In("slots");
    return true;
}

int ApplySecurityKey(Device &device, const std::string &key, const Json &value, Problem *error) {
    if (key == "secureBoot") return Took(ReadSecureBoot(value, &device.security.secureBoot, error));
    if (key == "spdm") return Took(ReadSpdm(value, device.security, error));
    return 0;
}

// The slots live in the switch's flash; nothing else changes through calls.
void SaveSecurity(const Device &device, Json *flash, Json *) {
    Json slots = Json::array();
    for (uint32_t i = 0; i < ZENTREL_SPDM_MAX_SLOTS; ++i) {
        const SpdmSlot &slot = device.security.slots[i];
        slots.push_back({{"slot", i}, {"group", slot.group}, {"occupied", slot.occupied ? 1 : 0},
                         {"sealed", slot.sealed ? 1 : 0}, {"certificate", WriteHexBytes(slot.certificate)}});
    }
    (*flash)["spdm"] = {{"slots", slots}};
}

void FillSlots(const SecurityModel &s, ZENTREL_SPDM_SLOT_INFO (&out)[ZENTREL_SPDM_MAX_SLOTS]) {
    for (uint32_t i = 0; i < s.slotCount && i < ZENTREL_SPDM_MAX_SLOTS; ++i) {
        const SpdmSlot &slot = s.slots[i];
        out[i].Flags = static_cast<uint8_t>((slot.occupied ? ZENTREL_SPDM_SLOT_OCCUPIED : 0) |
                                            (slot.sealed ? ZENTREL_SPDM_SLOT_SEALED : 0));
        out[i].SlotGroup = slot.group;
        out[i].Slot = static_cast<uint8_t>(i);
    }
}

// The slot a call names, when it exists and belongs to the group given.
SpdmSlot *FindSlot(SecurityModel &s, uint8_t slot, uint8_t group) {
    if (slot >= s.slotCount || group >= s.slotGroupCount || s.slots[slot].group != group) return nullptr;
    return &s.slots[slot];
}

// Every slot call: the slot it names.
template <typename Act>
ZENTREL_STATUS SlotCall(const char *function, PTR_ZENTREL_DEVICE device, uint8_t slot, uint8_t group, Act act) {
    Call call(function);
    call.Dev(device);
    if (!call.Proceed()) return call.Result();
    Device &d = call.Target();
    SpdmSlot *target = FindSlot(d.security, slot, group);
    if (target == nullptr) return call.Return(kStatusInvalidParameter);
    return call.Return(act(d, *target));
}

}  // namespace

extern const ModelPart kSecurityPart = {
    "security", SetSecurityDefaults, ApplySecurityKey, SaveSecurity, nullptr, nullptr, nullptr,
};

}  // namespace sim

using sim::Call;

ZENTREL_STATUS simlib::ZentrelSwitchSecureBootInfo(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                       PTR_ZENTREL_SWITCH_SECURE_BOOT_INFO Info) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Filled == nullptr || Info == nullptr) return call.Return(sim::kStatusInvalidParameter);
    *Info = call.Target().security.secureBoot;
    *Filled = sizeof *Info;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchGetSPDMInfo(PTR_ZENTREL_DEVICE Device, PTR_ZENTREL_SWITCH_SPDM_INFO Info) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Info == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::SecurityModel &s = call.Target().security;
    memset(Info, 0, sizeof *Info);
    Info->SlotGroupCount = s.slotGroupCount;
    Info->SlotCount = s.slotCount;
    if (s.versionCount > 0) {
        Info->Version = s.versions[s.currentVersion].MajorMinor;
        Info->VersionThird = s.versions[s.currentVersion].Third;
    }
    Info->BaseAsymAlgo = s.baseAsymAlgo;
    Info->BaseHashAlgo = s.baseHashAlgo;
    sim::FillSlots(s, Info->Slots);
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

ZENTREL_STATUS simlib::ZentrelSwitchSpdmSecureInfo(PTR_ZENTREL_DEVICE Device, uint32_t *Filled,
                                                       PTR_ZENTREL_SWITCH_SPDM_SECURE_INFO Info) {
    Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Filled == nullptr || Info == nullptr) return call.Return(sim::kStatusInvalidParameter);
    const sim::SecurityModel &s = call.Target().security;
    memset(Info, 0, sizeof *Info);
    Info->SlotGroupCount = s.slotGroupCount;
    Info->SlotCount = s.slotCount;
    Info->VersionCount = s.versionCount;
    memcpy(Info->SupportedVersions, s.versions, sizeof s.versions);
    if (s.versionCount > 0) Info->CurrentVersion = s.versions[s.currentVersion];
    Info->BaseAsymAlgo = s.asymAlgo;
    Info->BaseHashAlgo = s.hashAlgo;
    sim::FillSlots(s, Info->Slots);
    *Filled = sizeof *Info;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}

// The switch makes a new key for the slot and writes the request for its
// certificate; a sealed slot keeps its key.
ZENTREL_STATUS simlib::ZentrelSwitchSPDMExportCSR(PTR_ZENTREL_DEVICE Device, uint8_t Slot, uint8_t SlotGroup,
                                                      const char *FileName) {
    return sim::SlotCall(__func__, Device, Slot, SlotGroup, [&](sim::Device &d, sim::SpdmSlot &slot) {
        if (slot.sealed) return static_cast<ZENTREL_STATUS>(sim::kStatusSlotSealed);
        if (!sim::WriteFileBytes(FileName, sim::Csr(d.info.Handle, Slot))) return static_cast<ZENTREL_STATUS>(sim::kStatusFileError);
        return ZENTREL_STATUS_SUCCESS;
    });
}

ZENTREL_STATUS simlib::ZentrelSwitchSPDMImportCertificate(PTR_ZENTREL_DEVICE Device, uint8_t Slot,
                                                              uint8_t SlotGroup, const char *FileName) {
    return sim::SlotCall(__func__, Device, Slot, SlotGroup, [&](sim::Device &, sim::SpdmSlot &slot) {
        if (slot.sealed) return static_cast<ZENTREL_STATUS>(sim::kStatusSlotSealed);
        std::vector<uint8_t> der;
        if (!sim::ReadFileBytes(FileName, sim::kMaxCertificateBytes, &der)) {
            // A file too large for a slot is as wrong as one that is no certificate.
            return static_cast<ZENTREL_STATUS>(sim::IsRegularFile(FileName) ? sim::kStatusBadCertificate
                                                                            : sim::kStatusFileError);
        }
        if (!sim::IsCertificate(der)) return static_cast<ZENTREL_STATUS>(sim::kStatusBadCertificate);
        slot.certificate = std::move(der);
        slot.occupied = true;
        return ZENTREL_STATUS_SUCCESS;
    });
}

ZENTREL_STATUS simlib::ZentrelSwitchSPDMReadSlotCertificate(PTR_ZENTREL_DEVICE Device, uint8_t Slot,
                                                                uint8_t SlotGroup, const char *FileName) {
    return sim::SlotCall(__func__, Device, Slot, SlotGroup, [&](sim::Device &, sim::SpdmSlot &slot) {
        if (!slot.occupied) return static_cast<ZENTREL_STATUS>(sim::kStatusSlotEmpty);
        if (!sim::WriteFileBytes(FileName, slot.certificate)) return static_cast<ZENTREL_STATUS>(sim::kStatusFileError);
        return ZENTREL_STATUS_SUCCESS;
    });
}

// Invalidating an empty slot is accepted and changes nothing.
ZENTREL_STATUS simlib::ZentrelSwitchSPDMSlotManagement(PTR_ZENTREL_DEVICE Device, uint8_t Slot, uint8_t SlotGroup) {
    return sim::SlotCall(__func__, Device, Slot, SlotGroup, [](sim::Device &, sim::SpdmSlot &slot) {
        if (slot.sealed) return static_cast<ZENTREL_STATUS>(sim::kStatusSlotSealed);
        slot.occupied = false;
        slot.certificate.clear();
        return ZENTREL_STATUS_SUCCESS;
    });
}
