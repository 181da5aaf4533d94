// Read-only equalization state of switch lanes: receiver taps, transmitter
// coefficients, and the Serdes information of one lane or of a port.
#include <cmath>
#include <cstdio>

#include "frontend/input.h"
#include "frontend/helpers.h"
#include "phy.h"

namespace {

bool ReadLaneWords(const char *const *words, int32_t *start, int32_t *count) {
    if (ParseDecimal(WordAt(words, 0), start) != 0) {
        printf("failed to get port number\n");
        return false;
    }
    if (ParseDecimal(WordAt(words, 1), count) != 0) {
        printf("failed to get lane number\n");
        return false;
    }
    return true;
}

// The start lane and the number of lanes, from the words or the prompts
// (which do not flush standard input). False when the handler is done:
// *result then holds its result.
bool GetLaneRange(const char *const *words, const char *usage, int32_t *start, int32_t *count, uint32_t *result) {
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("%s\n", usage);
            *result = 0;
            return false;
        }
        if (!ReadLaneWords(words, start, count)) {
            *result = 1;
            return false;
        }
        return true;
    }
    *start = AskSigned("input the start port:", false);
    *count = AskSigned("input the number of port:", false);
    return true;
}

void PrintRxEq(const ZENTREL_SWITCH_RX_EQ_LANE &r, uint32_t lane) {
    printf("Lane %d, VGA = %d, AEQ = %d, DfeTap1P = %d, DfeTap1N = %d, DfeTap2 = %d, DfeTap3 = %d, DfeTap4 = %d, "
           "DfeTap5 = %d, DfeTap6 = %d, DfeTap7 = %d, DfeTap8 = %d, DfeTap9 = %d\n",
           static_cast<int>(lane), r.Vga, r.Aeq, r.DfeTap1P, r.DfeTap1N, r.DfeTap[0], r.DfeTap[1], r.DfeTap[2],
           r.DfeTap[3], r.DfeTap[4], r.DfeTap[5], r.DfeTap[6], r.DfeTap[7]);
}

void PrintTxCoeff(const ZENTREL_SWITCH_TX_COEFF_LANE &c, uint32_t lane) {
    printf("Lane %d, PreCursorNear = %d, MainCursorNear = %d, PostCursorNear = %d, PreCursorFar = %d, "
           "MainCursorFar =%d PostCursorFar = %d, \n",
           static_cast<int>(lane), c.PreCursorNear, c.MainCursorNear, c.PostCursorNear, c.PreCursorFar,
           c.MainCursorFar, c.PostCursorFar);
}

constexpr double kFullSwing = 96.0;
constexpr float kHundredths = 100.0f;

// A level ratio rounded to two decimals (halves away from zero), in dB.
float RatioDb(float numerator, float denominator) {
    float ratio = roundf(numerator / denominator * kHundredths) / kHundredths;
    float logarithm = static_cast<float>(log10(static_cast<double>(ratio)));
    return logarithm * 20.0f;
}

void PrintSerdesUsage() {
    printf("Usage : zentrelLibTest -i 0 -GetSerdesInfo <ReqOption> -Inputvalue <number>\n");
    printf("Options: \n");
    printf("ReqOption\t: 1- Serdes info request for lane,2 - Serdes info request for port \n");
    printf("InputValue\t: For Lane Serdes info request it is the lane number and for Port Serdes info request,"
           "it is the port number.\n");
}

bool IsSerdesOption(uint32_t option) {
    return option == ZENTREL_SERDES_REQ_LANE || option == ZENTREL_SERDES_REQ_PORT;
}

void PrintTxRow(int row, const ZENTREL_SERDES_TX_LANE &tx) {
    SerdesDb db = ComputeSerdesDb(tx.Cp1, tx.Cm1, tx.Amplitude);
    printf("%3d ", row);
    printf("%4d%4d%4d ", tx.C0, tx.Cp1, tx.Cm1);
    printf("%7.2f %8.2f %7d %7.2f ", static_cast<double>(db.preshoot), static_cast<double>(db.deEmphasis),
           tx.Amplitude, static_cast<double>(db.boost));
    printf("\n");
}

void PrintRxRow(int row, const ZENTREL_SERDES_RX_LANE &rx) {
    printf("%3d ", row);
    printf("%6d%6d%5d", rx.Dlevo, rx.Dleve, rx.H[0]);
    for (int i = 1; i < 8; ++i) printf("%4d", rx.H[i]);
    printf("%4d%4d%4d%4d%4d\n", rx.Vga, rx.Aeq, rx.H1P, rx.H1N, rx.Qskw);
}

// The entries of a response: one for a lane, up to 16 for a port, none
// for a response type the utility does not know.
uint32_t EntryCount(const ZENTREL_SWITCH_SERDES_INFO_RESP &r) {
    if (r.ResponseType == ZENTREL_SERDES_RESP_LANE) return 1;
    if (r.ResponseType != ZENTREL_SERDES_RESP_PORT) return 0;
    return r.Info.Port.EntryCount < ZENTREL_SERDES_MAX_ENTRIES ? r.Info.Port.EntryCount : ZENTREL_SERDES_MAX_ENTRIES;
}

const ZENTREL_SERDES_LANE_INFO &Entry(const ZENTREL_SWITCH_SERDES_INFO_RESP &r, uint32_t i) {
    return r.ResponseType == ZENTREL_SERDES_RESP_LANE ? r.Info.Lane : r.Info.Port.Entries[i];
}

}  // namespace

SerdesDb ComputeSerdesDb(uint8_t cp1, uint8_t cm1, uint8_t amplitude) {
    double x = kFullSwing - 12 * (5 - amplitude);
    double y = x - 2 * cp1;
    double z = x - 2 * cm1;
    double w = x - 2 * cp1 - 2 * cm1;
    float ys = static_cast<float>(y / kFullSwing), zs = static_cast<float>(z / kFullSwing);
    float xs = static_cast<float>(x / kFullSwing), ws = static_cast<float>(w / kFullSwing);
    return {RatioDb(ys, ws), RatioDb(ws, zs), RatioDb(xs, ws)};
}

uint32_t RxEqStatus(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t start = 0, count = 0;
    uint32_t result = 0;
    if (!GetLaneRange(words, "Usage: zentrelLibTest -i 0 -rxeq startPort numberOfPort", &start, &count, &result))
        return result;
    auto *eq = static_cast<PTR_ZENTREL_SWITCH_RX_EQ_STATUS>(AllocZeroed(sizeof(ZENTREL_SWITCH_RX_EQ_STATUS)));
    if (eq == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n");
        return 1;
    }
    ZENTREL_STATUS status =
        ZentrelSwitchRxEqStatus(device, static_cast<uint32_t>(start), static_cast<uint32_t>(count), eq);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("zntrlSwitchRxEqStatus test failed with status %x\n", status);
        result = 1;
    } else {
        LaneRange range = LanesInBuffer(start, count);
        for (uint32_t lane = range.first; lane < range.end; ++lane) PrintRxEq(eq->Lanes[lane], lane);
    }
    FreeBuffer(eq);
    return result;
}

uint32_t TxCoefficients(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t start = 0, count = 0;
    uint32_t result = 0;
    if (!GetLaneRange(words, "Usage: zentrelLibTest -i 0 -txcoeff startPort numberOfPort", &start, &count, &result))
        return result;
    auto *tx = static_cast<PTR_ZENTREL_SWITCH_TX_COEFF>(AllocZeroed(sizeof(ZENTREL_SWITCH_TX_COEFF)));
    if (tx == nullptr) {
        printf("Unable to allocate buffer for switch!!!\n");
        return 1;
    }
    printf("StartPort = %x, NumberOfPort = %x\n", start, count);
    ZENTREL_STATUS status =
        ZentrelSwitchTxCoeff(device, static_cast<uint32_t>(start), static_cast<uint32_t>(count), 0, tx);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("zntrlSwitchTxCoeff test failed with status %x\n", status);
        result = 1;
    } else {
        LaneRange range = LanesInBuffer(start, count);
        for (uint32_t lane = range.first; lane < range.end; ++lane) PrintTxCoeff(tx->Lanes[lane], lane);
    }
    FreeBuffer(tx);
    return result;
}

uint32_t SerdesInfo(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    int32_t option = 0, number = 0;
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintSerdesUsage();
            return 0;
        }
        if (ParseDecimal(WordAt(words, 0), &option) != 0) {
            printf("Failed to get the Serdes Info Request option.\n");
            return 1;
        }
        if (!IsSerdesOption(static_cast<uint32_t>(option))) {
            printf("Invalid Serdes Info Request option.\n");
            return 1;
        }
        // The second word is the literal "-Inputvalue"; a bad number is
        // reported by the parser and otherwise ignored.
        ParseDecimal(WordAt(words, 2), &number);
    } else {
        option = AskSigned("Input the Serdes Info Request option\n");
        if (!IsSerdesOption(static_cast<uint32_t>(option) & 0xFF)) {
            printf("Invalid Serdes Info Request option\n");
            return 1;
        }
        number = AskSigned((option & 0xFF) == ZENTREL_SERDES_REQ_LANE ? "Input the Lane number\n"
                                                                          : "Input the Port number\n");
    }
    ZENTREL_SWITCH_SERDES_INFO_REQ request = {};
    request.RequestOption = static_cast<uint8_t>(option);
    request.Number = static_cast<uint16_t>(number);
    ZENTREL_SWITCH_SERDES_INFO_RESP response = {};
    ZENTREL_STATUS status = ZentrelSwitchGetSerdesInfo(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("\nPSW version: %02X\r\n\n", response.PswVersion);
    printf("\n=------------------------ TX ---------------------=\n"
           " Lane  c0 cp1 cm1  Preshoot De-emphasis Amp Boost  \n"
           "===================================================\n");
    // Rows count up from the requested number, wrapping as 32-bit values.
    uint32_t entries = EntryCount(response), first = static_cast<uint32_t>(number);
    for (uint32_t i = 0; i < entries; ++i) PrintTxRow(static_cast<int>(first + i), Entry(response, i).Tx);
    printf("\n=-------------------------------- RX ---------------------------------=\n"
           " Lane  DLEVO DLEVE  H2  H3  H4  H5  H6  H7  H8  H9 VGA AEQ H1P H1N Qskw\n"
           "=======================================================================\n");
    for (uint32_t i = 0; i < entries; ++i) PrintRxRow(static_cast<int>(first + i), Entry(response, i).Rx);
    return 0;
}
