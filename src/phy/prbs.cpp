// The PRBS generator and checker of one switch lane: start a generator,
// run the checker and read its counters, or inject a single bit error.
#include <cstdio>

#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"
#include "phy.h"

namespace {

constexpr uint32_t kGenerate = 1, kCheck = 2, kInject = 3;
constexpr uint32_t kEnableOnly = 1, kStatusOnly = 2, kCounterOnly = 3, kPerformAll = 4;
constexpr uint32_t kStatusPollMs = 1000;

// The alternate family numbers six patterns, the other four.
bool IsAlternateFamily() {
    ZENTREL_DEVICE_INFO info = {};
    if (ZentrelGetDeviceInfo(gSelectedDeviceIndex, ZENTREL_DEVICE_INFO_LENGTH, &info) != ZENTREL_STATUS_SUCCESS)
        return false;
    return (info.DeviceId & 0xFFFB) == 0xC030;
}

void PrintUsage(bool alternate) {
    printf("Usage: zentrelLibTest -i 0 -prbs <prbs option> -lane <lane> -pattern <pattern> -rate <rate> "
           "[-sampleLSB <sample count LSB 16bit Hex> -sampleMid <sample count Mid 16bit Hex> "
           "-sampleMSB <sample count MSB 16bit Hex> -infinite <infinite> -invpol <invert polarity> "
           "-counter <counter> -waitTime<waitTime in ms>] -checkerOption <option>\n");
    printf("Options : \n");
    printf("PRBS option  : 1 - Generate PRBS, 2 - Check PRBS 3 - Inject Single Bit Error\n");
    if (alternate)
        printf("PRBS pattern : 0-PRBS7, 1-PRBS9, 2-PRBS11, 3-PRBS15, 4-PRBS23, 5-PRBS31 :");
    else
        printf("PRBS pattern : 0-PRBS7, 2-PRBS15, 3-PRBS23, 4-PRBS31 :");
    printf("PRBS rate    : 1 - 2.5G, 2 - 5G, 3 - 8G, 4 - 16G, 5 - 32G\n");
    printf("Notes        :\n");
    printf("1. Sample count, Infinite,Invert Polarity, and counter options are valid only for PRBS option 2 "
           "i.e., Check PRBS.\n");
    printf("2. Sample count should be provided without the prefix 0x \n");
    printf("3. Pattern and Rate options are not valid for option 3 i.e., Inject Single Bit Error.\n");
    printf("4. waitTime option is valid only for option 3 i.e., Inject Single Bit Error.\n");
    printf("5. 'checkerOption' option - Possible values are 1-Only Enable Checker, 2-Only Check Status, "
           "3-Only read checker status, 4-Perform all. \n");
}

struct PrbsInput {
    uint32_t option = 0;
    ZENTREL_SWITCH_PRBS_REQ request = {};
    int32_t counter = 0;
    uint32_t checkerOption = kPerformAll;
};

bool IsPrbsOption(uint32_t option) {
    return option >= kGenerate && option <= kInject;
}

// One value word: false, after its message, when it is missing or bad.
template <typename Parse, typename T>
bool Value(const char *const *words, size_t index, Parse parse, T *value, const char *message) {
    int32_t v = 0;
    bool ok = parse(WordAt(words, index), &v) == 0;
    *value = static_cast<T>(v);
    if (!ok) printf("%s\n", message);
    return ok;
}

// The values stand at every second word; the keyword words between them
// are not looked at. The checker option may be left out (it is 4 then).
bool ReadCheckWords(const char *const *words, PrbsInput *in) {
    ZENTREL_SWITCH_PRBS_REQ &r = in->request;
    if (!Value(words, 8, ParseHex, &r.SampleCount[0], "Failed to get sample count LSB 16bit Hex.") ||
        !Value(words, 10, ParseHex, &r.SampleCount[1], "Failed to get sample count mid 16bit Hex.") ||
        !Value(words, 12, ParseHex, &r.SampleCount[2], "Failed to get sample count MSB 16bit Hex.") ||
        !Value(words, 14, ParseDecimal, &r.Infinite, "Failed to get inifinite value.") ||
        !Value(words, 16, ParseDecimal, &r.InvertPolarity, "Failed to get invert polarity.") ||
        !Value(words, 18, ParseDecimal, &in->counter, "Failed to get the counter."))
        return false;
    if (WordAt(words, 20) == nullptr) return true;
    return Value(words, 20, ParseDecimal, &in->checkerOption, "Failed to get the PRBS Checker option.");
}

bool ReadPrbsWords(const char *const *words, PrbsInput *in) {
    ZENTREL_SWITCH_PRBS_REQ &r = in->request;
    if (!Value(words, 0, ParseDecimal, &in->option, "Failed to get prbs option.")) return false;
    if (!IsPrbsOption(in->option)) {
        printf("Invalid prbs option");
        return false;
    }
    if (!Value(words, 2, ParseDecimal, &r.Lane, "Failed to get lane number.")) return false;
    if (in->option == kInject) return Value(words, 4, ParseDecimal, &r.WaitTimeMs, "Failed to get wait Time.");
    if (!Value(words, 4, ParseDecimal, &r.Pattern, "Failed to get PRBS pattern.") ||
        !Value(words, 6, ParseDecimal, &r.Rate, "Failed to get rate."))
        return false;
    return in->option != kCheck || ReadCheckWords(words, in);
}

bool AskPrbs(bool alternate, PrbsInput *in) {
    ZENTREL_SWITCH_PRBS_REQ &r = in->request;
    in->option = AskDecimal({"Please input the option", " 1 - Generate PRBS", " 2 - Check PRBS",
                             " 3 - Inject Single Bit Error"});
    if (!IsPrbsOption(in->option)) {
        printf("Invalid prbs option");
        return false;
    }
    r.Lane = static_cast<uint32_t>(AskSigned("Input the  lane :"));
    if (in->option == kInject) {
        r.WaitTimeMs = static_cast<uint32_t>(AskSigned("Input the  waitTime :"));
        return true;
    }
    r.Pattern = static_cast<uint32_t>(
        AskSigned(alternate ? "Input the  pattern 0-PRBS7, 1-PRBS9, 2-PRBS11, 3-PRBS15, 4-PRBS23, 5-PRBS31 :"
                               : "Input the  pattern 0-PRBS7, 2-PRBS15, 3-PRBS23, 4-PRBS31 :"));
    r.Rate = static_cast<uint32_t>(AskSigned("Input the  Rate 1 - 2.5G, 2 - 5G, 3 - 8G, 4 - 16G, 5 - 32G:"));
    if (in->option != kCheck) return true;
    printf("Input sample count , total 48 bits\n");
    r.SampleCount[0] = static_cast<uint16_t>(AskHex("Input the  sample count LSB 16bit Hex:"));
    r.SampleCount[1] = static_cast<uint16_t>(AskHex("Input the  sample count Mid 16bit Hex:"));
    r.SampleCount[2] = static_cast<uint16_t>(AskHex("Input the  sample count MSB 16bit Hex:"));
    r.Infinite = static_cast<uint32_t>(AskSigned("Input the  infinite :"));
    r.InvertPolarity = static_cast<uint32_t>(AskSigned("Input whether invert Polarity: "));
    in->counter = AskSigned("Input the  i :");
    in->checkerOption = AskDecimal({"Input the required checker action: ", "1-Only enable checker",
                                    "2-Only check status", "3-Only read checker counter", "4-Perform all the above"});
    return true;
}

// Generate or inject: one call without a checker response.
uint32_t RunSimple(PTR_ZENTREL_DEVICE device, PrbsInput &in) {
    bool generate = in.option == kGenerate;
    in.request.Operation = generate ? ZENTREL_PRBS_GENERATE : ZENTREL_PRBS_INJECT_ERROR;
    ZENTREL_STATUS status = ZentrelSwitchPrbs(device, &in.request, nullptr);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("libStatus = %x\n", status);
        return 1;
    }
    printf(generate ? "PRBS Generate successful.\n" : "Single bit error injected successfully.\n");
    return 0;
}

// i - 1 as the controller computes it, wrapping below the smallest value.
int32_t Decrement(int32_t i) {
    return static_cast<int32_t>(static_cast<uint32_t>(i) - 1u);
}

// The checker operations the option asks for, in order; the counter
// bounds the status queries. False after a library failure.
bool RunChecker(PTR_ZENTREL_DEVICE device, PrbsInput &in, PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP response) {
    ZENTREL_SWITCH_PRBS_REQ &r = in.request;
    auto call = [&](uint32_t operation) {
        r.Operation = operation;
        ZENTREL_STATUS status = ZentrelSwitchPrbs(device, &r, response);
        if (status != ZENTREL_STATUS_SUCCESS) printf("libStatus = %x\n", status);
        return status == ZENTREL_STATUS_SUCCESS;
    };
    uint32_t option = in.checkerOption;
    if ((option == kEnableOnly || option == kPerformAll) && !call(ZENTREL_PRBS_ENABLE_CHECKER)) return false;
    int32_t &i = in.counter;
    if (option == kStatusOnly || option == kPerformAll) {
        for (;;) {
            bool more = i > 0;
            i = Decrement(i);  // a counter that runs out ends at -1
            if (!more) break;
            if (!call(ZENTREL_PRBS_CHECK_STATUS)) return false;
            if ((response->CheckerStatus & ZENTREL_PRBS_IN_SYNC) == 0) {
                printf("OUT of Sync\n");
                if (i > 9) i -= 10;
            }
            if ((response->CheckerStatus & ZENTREL_PRBS_CHECK_DONE) != 0) break;
            printf("..");
            SleepMs(kStatusPollMs);
        }
    }
    printf("i = %d\n", i);
    if ((option == kCounterOnly || option == kPerformAll) && !call(ZENTREL_PRBS_READ_COUNTER)) return false;
    return true;
}

uint32_t RunCheck(PTR_ZENTREL_DEVICE device, PrbsInput &in) {
    if (in.checkerOption > kPerformAll) {  // a negative option counts as too large
        printf("Invalid option!\n");
        return 1;
    }
    auto *response = static_cast<PTR_ZENTREL_SWITCH_PRBS_CHECKER_RESP>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_PRBS_CHECKER_RESP)));
    if (response == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n");
        return 1;
    }
    if (!RunChecker(device, in, response)) {
        FreeBuffer(response);
        return 1;
    }
    printf("Checker Status %x\n", response->CheckerStatus);
    printf("WordCount[0] %x WordCount[1] %x WordCount[2] %x\n", response->WordCount[0], response->WordCount[1],
           response->WordCount[2]);
    printf("Accumulated Bit Count\t\tError Count\n");
    printf("\t%e\t\t\t%d\n", AccumulatedBitCount(response->WordCount), response->ErrorCount);
    FreeBuffer(response);
    return 0;
}

}  // namespace

double AccumulatedBitCount(const uint16_t (&wordCount)[3]) {
    return static_cast<double>(wordCount[0]) + static_cast<double>(wordCount[1]) * 65536.0 +
           static_cast<double>(wordCount[2]) * 4294967296.0;
}

uint32_t PrbsTest(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    bool alternate = IsAlternateFamily();
    PrbsInput in;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintUsage(alternate);
            return 0;
        }
        if (!ReadPrbsWords(words, &in)) return 1;
    } else if (!AskPrbs(alternate, &in)) {
        return 1;
    }
    if (in.option == kCheck) return RunCheck(device, in);
    return RunSimple(device, in);
}
