// Core dump and trace handlers called in ways no command line produces (a
// null word list, several threads at once), and the simulated core dump,
// trace and trigger rules, the state file included.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "capture.h"
#include "dumps/dumps.h"

namespace {

// The first simulated switch, run in a fresh working directory.
class DumpHandlers : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
        context_.Handle = 0x100;
        context_.Info.Handle = 0x100;
        char path[] = "/tmp/zentrel-dumps-XXXXXX";
        ASSERT_NE(mkdtemp(path), nullptr);
        dir_ = path;
        ASSERT_NE(getcwd(previous_, sizeof previous_), nullptr);
        ASSERT_EQ(chdir(dir_.c_str()), 0);
    }
    void TearDown() override {
        ZentrelExit();
        if (saved_ != nullptr) {
            fclose(stdin);
            stdin = saved_;
        }
        for (const std::string &name : Files()) remove((dir_ + "/" + name).c_str());
        EXPECT_EQ(chdir(previous_), 0);
        rmdir(dir_.c_str());
    }
    void Feed(const std::string &text) {
        text_ = text;
        saved_ = stdin;
        stdin = fmemopen(text_.data(), text_.size(), "r");
        ASSERT_NE(stdin, nullptr);
    }
    std::vector<std::string> Files() const {
        std::vector<std::string> names;
        DIR *d = opendir(dir_.c_str());
        if (d == nullptr) return names;
        // The 64-bit forms, which a 32-bit controller needs on a file
        // system with large directory offsets or inode numbers.
        while (dirent64 *e = readdir64(d))
            if (e->d_name[0] != '.') names.push_back(e->d_name);
        closedir(d);
        return names;
    }
    static off64_t SizeOf(const std::string &name) {
        struct stat64 st;
        return stat64(name.c_str(), &st) == 0 ? st.st_size : -1;
    }

    ZENTREL_DEVICE_CONTEXT context_ = {};
    std::string dir_;
    char previous_[4096] = {};
    std::string text_;
    FILE *saved_ = nullptr;
};

const char kUploading[] = "\n\n\nUploading Coredump.. Going to take 1 to 2 minutes \n";
const char kPrompt[] = "Input the option 1-RAW Coredump, 2-Decoded Coredump :";

TEST_F(DumpHandlers, WithoutWordsTheCaptureAsksForTheType) {
    Feed("2\n");
    uint32_t result = 9;
    EXPECT_EQ(Captured([&] { result = CaptureCoreDump(&context_, nullptr, &context_.Info); }),
              std::string(kPrompt) + kUploading +
                  "Valid Coredump data collected\nBuffer saved to the file..\nCoredump data collected..\n");
    EXPECT_EQ(result, 0u);
    std::vector<std::string> files = Files();
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].rfind("decoded_coredump_", 0), 0u) << files[0];
    EXPECT_EQ(SizeOf(files[0]), 2048 + 4096 + 6144 + 3072 + 8192);  // the five sections of the default dump
}

TEST_F(DumpHandlers, TypeZeroIsCapturedButNamesNoFile) {
    Feed("0\n");
    uint32_t result = 9;
    EXPECT_EQ(Captured([&] { result = CaptureCoreDump(&context_, nullptr, &context_.Info); }),
              std::string(kPrompt) + kUploading + "Valid Coredump data collected\nFile creation failed!!\n");
    EXPECT_EQ(result, 0u);
    EXPECT_TRUE(Files().empty());
}

TEST_F(DumpHandlers, TypeThreeIsRefusedBeforeTheLibrary) {
    Feed("3\n");
    uint32_t result = 9;
    EXPECT_EQ(Captured([&] { result = CaptureCoreDump(&context_, nullptr, &context_.Info); }),
              std::string(kPrompt) + "Invalid coredump type.\n");
    EXPECT_EQ(result, 1u);
    EXPECT_TRUE(Files().empty());
}

TEST_F(DumpHandlers, TriggerHandlersWithWordsSendTheZeroedRequest) {
    const char *const words[] = {nullptr};
    uint32_t result = 9;
    // Module type 0 is not one the switch takes.
    EXPECT_EQ(Captured([&] { result = SetCoreDumpTrigger(&context_, words, &context_.Info); }),
              " failed with status 2\n");
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(Captured([&] { result = GetCoreDumpTrigger(&context_, words, &context_.Info); }),
              " Get Trigger Condition is failed with status 2\n");
    EXPECT_EQ(result, 1u);
}

// Every thread gets files of its own, each whole.
TEST_F(DumpHandlers, ThreadsCaptureAndReadTheTraceIntoFilesOfTheirOwn) {
    constexpr int kThreads = 8;
    const char *const noWords[] = {nullptr};
    std::vector<uint32_t> results(2 * kThreads, 9);
    Captured([&] {
        std::vector<std::thread> threads;
        for (int i = 0; i < kThreads; ++i)
            threads.emplace_back([&, i] {
                ZENTREL_DEVICE_CONTEXT own = context_;
                results[2 * i] = CaptureCoreDump(&own, noWords, &own.Info);
                results[2 * i + 1] = GetDecodedTrace(&own, nullptr, &own.Info);
            });
        for (std::thread &t : threads) t.join();
    });
    for (uint32_t r : results) EXPECT_EQ(r, 0u);
    int dumps = 0, traces = 0;
    for (const std::string &name : Files()) {
        if (name.rfind("coredump_", 0) == 0) {
            ++dumps;
            EXPECT_EQ(SizeOf(name), 40960) << name;
        } else if (name.rfind("tracedecodedbuffer_", 0) == 0) {
            ++traces;
            EXPECT_EQ(SizeOf(name), 12000) << name;
        } else {
            ADD_FAILURE() << name;
        }
    }
    EXPECT_EQ(dumps, kThreads);
    EXPECT_EQ(traces, kThreads);
}

// The simulator's rules, through its exported interface.
class DumpModel : public testing::Test {
protected:
    void SetUp() override {
        unsetenv("ZENTREL_SIM_SCENARIO");
        ZentrelExit();
        ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    }
    void TearDown() override {
        ZentrelExit();
        unsetenv("ZENTREL_SIM_STATE");
    }
    uint32_t switch1_ = 0x101;
};

TEST_F(DumpModel, InformationFillsOnlyTheEntriesTheResponseHasRoomFor) {
    uint32_t handle = 0x100;
    ZENTREL_SWITCH_COREDUMP_INFO_REQ request = {};
    request.Flags = ZENTREL_COREDUMP_INFO_REQUESTED;
    request.CoreDumpType = ZENTREL_COREDUMP_DECODED;
    request.ResponseSize = 40 + 2 * 16;
    uint8_t bytes[40 + 3 * 16];
    memset(bytes, 0xEE, sizeof bytes);
    auto *response = reinterpret_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP>(bytes);
    ASSERT_EQ(ZentrelSwitchGetCoredumpInfo(&handle, &request, response), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(response->SectionCount, 5u);
    EXPECT_EQ(response->EntriesFilled, 2u);
    EXPECT_EQ(bytes[40 + 2 * 16], 0xEE);  // nothing past the size given
    ZENTREL_SWITCH_COREDUMP_SECTION second;
    memcpy(&second, bytes + 40 + 16, sizeof second);
    EXPECT_EQ(second.Id, 1);
    EXPECT_EQ(second.Size, 4096u);
    // The sizes agree with the validity query and with what a capture delivers.
    uint32_t valid = 0, size = 0;
    ASSERT_EQ(ZentrelSwitchIsCoredumpValid(&handle, ZENTREL_COREDUMP_DECODED, &valid, &size), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(valid, 1u);
    EXPECT_EQ(size, response->DecodedSize);
    std::vector<uint8_t> buffer(262144);
    uint32_t length = static_cast<uint32_t>(buffer.size());
    ASSERT_EQ(ZentrelGetCoreDump(&handle, buffer.data(), &length, ZENTREL_COREDUMP_DECODED), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(length, size);
    // A section's upload is the same text as its place in the whole dump.
    std::vector<uint8_t> section(4096);
    uint32_t sectionLength = 4096;
    ASSERT_EQ(ZentrelSwitchGetDecodedCoreDumpBySection(&handle, section.data(), &sectionLength, 1),
              ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(sectionLength, 4096u);
    EXPECT_EQ(memcmp(section.data(), buffer.data() + 2048, 4096), 0);
}

// A buffer smaller than the trace holds its first part, reported as a
// trace that grew (the growth itself is seen in the trace cases).
TEST_F(DumpModel, ATraceReadIntoASmallerBufferIsPartial) {
    uint32_t length = 0;
    ASSERT_EQ(ZentrelGetTraceBuffer(&switch1_, nullptr, &length), ZENTREL_STATUS_SUCCESS);
    std::vector<uint8_t> buffer(length + 16);
    uint32_t asked = length;
    EXPECT_EQ(ZentrelGetTraceBuffer(&switch1_, buffer.data(), &asked), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(asked, length);
    asked = length - 1;
    EXPECT_EQ(ZentrelGetTraceBuffer(&switch1_, buffer.data(), &asked), ZENTREL_STATUS_TRACE_GREW);
    EXPECT_EQ(asked, length - 1);
}

TEST_F(DumpModel, TheStateFileKeepsAnErasedDumpAndTheTriggersCompactly) {
    char path[] = "/tmp/zentrel-state-XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);
    remove(path);
    setenv("ZENTREL_SIM_STATE", path, 1);
    ZentrelExit();
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    ZENTREL_SWITCH_SET_TRIGGER_COND_REQ set = {};
    set.ModuleType = ZENTREL_TRIGGER_MODULE_PORT;
    set.Port = 100;
    set.ConditionBitmap = ZENTREL_TRIGGER_AER_FATAL;
    set.SettingsType = ZENTREL_TRIGGER_PERSISTENT;
    ASSERT_EQ(ZentrelSwitchSetTriggerCondForCoreDump(&switch1_, &set), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);

    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::string state = text.str();
    EXPECT_LT(state.size(), 64u * 1024) << "the dumps are described, not stored";
    // The file holds what the run changed: the trigger, not the dumps.
    nlohmann::json doc = nlohmann::json::parse(state, nullptr, false);
    ASSERT_TRUE(doc.is_object()) << state;
    ASSERT_TRUE(doc["devices"]["0x101"]["flash"].contains("dumpTriggersPersistent")) << state;
    EXPECT_FALSE(doc["devices"]["0x101"]["flash"].contains("coreDump")) << state;

    // A run that finds a dump described in the file has it; one that
    // erased it leaves it erased for the next run.
    doc["devices"]["0x101"]["flash"]["coreDump"] = {{"present", 1}};
    {
        std::ofstream out(path);
        out << doc.dump();
    }
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    uint32_t valid = 0, size = 0;
    ASSERT_EQ(ZentrelSwitchIsCoredumpValid(&switch1_, ZENTREL_COREDUMP_RAW, &valid, &size), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(valid, 1u);
    ASSERT_EQ(ZentrelEraseCoreDump(&switch1_), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelExit(), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelInitialize(), ZENTREL_STATUS_SUCCESS);
    ASSERT_EQ(ZentrelSwitchIsCoredumpValid(&switch1_, ZENTREL_COREDUMP_RAW, &valid, &size), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(valid, 0u);
    ZENTREL_SWITCH_GET_TRIGGER_COND_REQ get = {};
    ZENTREL_SWITCH_GET_TRIGGER_COND_RESP answer = {};
    get.ModuleType = ZENTREL_TRIGGER_MODULE_PORT;
    get.Number = 100;
    get.QueryType = ZENTREL_TRIGGER_PERSISTENT;
    ASSERT_EQ(ZentrelSwitchGetTriggerCondForCoreDump(&switch1_, &get, &answer), ZENTREL_STATUS_SUCCESS);
    EXPECT_EQ(answer.ConditionBitmap, ZENTREL_TRIGGER_AER_FATAL);
    remove(path);
    remove((std::string(path) + ".lock").c_str());
}

}  // namespace
