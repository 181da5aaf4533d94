// The simulator's image checks, and the fixed-file firmware download with
// its mutex as the parallel test uses it.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

#include "fresh_simulator.h"
#include "capture.h"
#include "images/images.h"
#include "zentrel.h"

namespace {

uint32_t Crc32(const std::vector<uint8_t> &bytes, size_t from) {
    uint32_t c = 0xFFFFFFFFu;
    for (size_t i = from; i < bytes.size(); ++i) {
        c ^= bytes[i];
        for (int k = 0; k < 8; ++k) c = (c & 1u) != 0 ? 0xEDB88320u ^ (c >> 1) : c >> 1;
    }
    return c ^ 0xFFFFFFFFu;
}

void PutLe32(std::vector<uint8_t> &bytes, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i) bytes[at + i] = static_cast<uint8_t>(v >> (8 * i));
}

std::vector<uint8_t> Image(const char *magic, uint32_t version, uint32_t deviceId, size_t payload) {
    std::vector<uint8_t> image(32 + payload, 0);
    memcpy(image.data(), magic, 4);
    PutLe32(image, 4, 1);
    PutLe32(image, 8, version);
    PutLe32(image, 12, deviceId);
    PutLe32(image, 16, static_cast<uint32_t>(payload));
    for (size_t i = 0; i < payload; ++i) image[32 + i] = static_cast<uint8_t>(i * 7 + 3);
    PutLe32(image, 20, Crc32(image, 32));
    return image;
}

class Images : public FreshSimulator {
protected:
    uint32_t FwVersion() {
        ZENTREL_DEVICE_INFO info;
        EXPECT_EQ(ZentrelGetDeviceInfo(0, ZENTREL_DEVICE_INFO_LENGTH, &info), ZENTREL_STATUS_SUCCESS);
        return info.FwVersion;
    }
    ZENTREL_STATUS Download(std::vector<uint8_t> image) {
        return ZentrelSwitchDownloadFirmware(&handle_, 0, 0, 0, image.data(), static_cast<uint32_t>(image.size()));
    }

    uint32_t handle_ = 0x100;
};

TEST_F(Images, ARefusedImageLeavesTheVersion) {
    uint32_t before = FwVersion();
    std::vector<uint8_t> good = Image("ZFWI", 0x04150001, 0xC010, 100);
    EXPECT_EQ(Download(Image("PLDM", 0x04150001, 0, 100)), 0x10u);
    EXPECT_EQ(Download(std::vector<uint8_t>(good.begin(), good.begin() + 31)), 0x10u);
    EXPECT_EQ(Download(std::vector<uint8_t>(good.begin(), good.end() - 1)), 0x11u);
    std::vector<uint8_t> corrupt = good;
    corrupt[40] ^= 0x80;
    EXPECT_EQ(Download(corrupt), 0x12u);
    EXPECT_EQ(Download(Image("ZFWI", 0x04150001, 0xC034, 100)), 0x13u);
    EXPECT_EQ(FwVersion(), before);
}

TEST_F(Images, AnAcceptedImageSetsBothVersions) {
    EXPECT_EQ(Download(Image("ZFWI", 0x05000102, 0, 0)), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(FwVersion(), 0x05000102u);
    ZENTREL_SWITCH_MFG_INFO mfg;
    ASSERT_EQ(ZentrelSwitchGetMfgInfo(&handle_, &mfg), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(mfg.FwVersion[0], 5);
    EXPECT_EQ(mfg.FwVersion[3], 2);
}

TEST_F(Images, ThePldmRequestMustRepeatTheImage) {
    std::vector<uint8_t> package = Image("PLDM", 0x04160000, 0, 64);
    ZENTREL_SWITCH_PLDM_DOWNLOAD_REQ request = {};
    request.Image = package.data();
    request.ImageLength = static_cast<uint32_t>(package.size()) - 1;
    EXPECT_EQ(ZentrelSwitchDownloadPldmFirmware(&handle_, &request, package.data(), request.ImageLength + 1), 0x2u);
    request.ImageLength += 1;
    EXPECT_EQ(ZentrelSwitchDownloadPldmFirmware(&handle_, &request, package.data(), request.ImageLength), 0u);
    EXPECT_EQ(FwVersion(), 0x04160000u);
}

// Runs in a directory of its own, so that "switchFw.bin" is the test's.
class FixedFile : public Images {
protected:
    void SetUp() override {
        Images::SetUp();
        char pattern[] = "/tmp/zentrel-fw-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        dir_ = pattern;
        ASSERT_NE(getcwd(old_, sizeof old_), nullptr);
        ASSERT_EQ(chdir(dir_.c_str()), 0);
    }
    void TearDown() override {
        unlink("switchFw.bin");
        EXPECT_EQ(chdir(old_), 0);
        rmdir(dir_.c_str());
        Images::TearDown();
    }
    std::string dir_;
    char old_[4096] = {};
};

TEST_F(FixedFile, AFailedReadKeepsTheMutexLocked) {
    std::string out = Captured([&] { EXPECT_EQ(DownloadFixedFirmware(&handle_), 1u); });
    EXPECT_EQ(out, "NULL pointer for file\nFirmware file read error.\n");
    EXPECT_EQ(pthread_mutex_trylock(&gFirmwareFileMutex), EBUSY);
    pthread_mutex_unlock(&gFirmwareFileMutex);  // for the tests that follow
}

TEST_F(FixedFile, ADownloadReleasesTheMutexBeforeTheLibraryCall) {
    std::vector<uint8_t> image = Image("ZFWI", 0x04150900, 0, 256);
    FILE *f = fopen("switchFw.bin", "wb");
    ASSERT_NE(f, nullptr);
    fwrite(image.data(), 1, image.size(), f);
    fclose(f);
    std::string out = Captured([&] { EXPECT_EQ(DownloadFixedFirmware(&handle_), 0u); });
    EXPECT_EQ(out, "\n \n Firmware download process started...\n"
                   "Successfully downloaded the firmware image, please reset the card. \n");
    ASSERT_EQ(pthread_mutex_trylock(&gFirmwareFileMutex), 0);
    pthread_mutex_unlock(&gFirmwareFileMutex);
    EXPECT_EQ(FwVersion(), 0x04150900u);
}

}  // namespace
