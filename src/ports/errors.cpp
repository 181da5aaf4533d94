// Port error statistics with the decode of each port's error registers,
// the packet RAM soft-error counters, and their resets.
#include <array>
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "ports.h"

namespace {

// One shown bit of a register and its label.
struct FlagBit {
    uint8_t bit;
    const char *label;
};

// One register group: its title line and its bits in printing order.
struct FlagGroup {
    const char *title;
    const FlagBit *bits;
    size_t count;
};

template <size_t N>
constexpr FlagGroup Group(const char *title, const FlagBit (&bits)[N]) {
    return {title, bits, N};
}

template <size_t N>
constexpr FlagGroup Group(const char *title, const std::array<FlagBit, N> &bits) {
    return {title, bits.data(), N};
}

bool IsSet(uint32_t value, uint8_t bit) {
    return (value >> bit & 1u) != 0;
}

// Status bits: indented, 'Y' or 'N'.
void PrintStatusFlags(FILE *out, const FlagGroup &group, uint32_t value) {
    fprintf(out, "%s\n", group.title);
    for (size_t i = 0; i < group.count; ++i)
        fprintf(out, "    %s: %c\n", group.bits[i].label, IsSet(value, group.bits[i].bit) ? 'Y' : 'N');
}

// Masks, severities and other settings: not indented, "Yes" or "No".
void PrintSettingFlags(FILE *out, const FlagGroup &group, uint32_t value) {
    fprintf(out, "%s\n", group.title);
    for (size_t i = 0; i < group.count; ++i)
        fprintf(out, "%s: %s\n", group.bits[i].label, IsSet(value, group.bits[i].bit) ? "Yes" : "No");
}

const FlagBit kErrorStatusBits[] = {
    {0, "CorrectableErrorDetected"},
    {1, "NonFatalErrorDetected"},
    {2, "FatalErrorDetected"},
    {3, "UnsupportedRequestDetected"},
};

const FlagBit kUncorrectableStatusBits[] = {
    {4, "DataLinkProtocolError"},     {5, "SurpriseDownError"},
    {12, "PoisedTLPStatus"},          {13, "FlowControlProtocolError"},
    {14, "CompletionTimeout"},        {15, "CompleterAbortStatus"},
    {16, "UnexpectedCompletionStatus"}, {17, "ReceiverOverflowStatus"},
    {18, "MalformedTLPStatus"},       {19, "ECRCError"},
    {20, "UnsupportedRequestError"},  {21, "ACSViolationStatus"},
    {22, "UncorrectableInternalError"}, {23, "MC Blocked TLP"},
    {24, "Atomic Op Egress Blocked"}, {25, "TLP Prefix Blocked Error"},
    {26, "Poisoned TLP Egress Blocked"},
};

const FlagBit kCorrectableStatusBits[] = {
    {0, "ReceiverError"},          {6, "BadTLP"},
    {7, "BadDLLP"},                {8, "ReplayNumRollOver"},
    {12, "ReplayTimerTimeout"},    {13, "AdvisoryNonFatalError"},
    {14, "CorrectedInternalError"}, {15, "HeaderLogOverflow"},
};

const FlagBit kCapControlBits[] = {
    {5, "ECRC Generation Capable"},
    {6, "ECRC Generation Enable"},
    {7, "ECRC Check Capable"},
    {8, "ECRC Check Enable"},
    {9, "Multiple Header Recording Capable"},
    {10, "Multiple Header Recording Enable"},
    {11, "TLP Prefix Log Present"},
    {12, "Completion Timeout Prefix Header Log Capable"},
};

// The serdes status shows as one flag: set when the value is non-zero.
const FlagBit kSerdesBits[] = {{0, "Serdes Error Status"}};

constexpr FlagBit kSeverityBits[] = {
    {4, "Data Link Protocol"},   {5, "Surprise Down"},
    {12, "Poisoned TLP Received"}, {13, "Flow Control Protocol"},
    {14, "Completion Timeout"},  {15, "Completer Abort Severity"},
    {16, "Unexpected Completion"}, {17, "Receiver Overflow"},
    {18, "Malformed TLP"},       {19, "ECRC Error"},
    {20, "Unsupported Request"}, {21, "ACS Violation"},
    {22, "Uncorrectable Internal"}, {23, "MC Blocked TLP"},
    {24, "Atomic Op Egress Blocked"}, {25, "TLP Prefix Blocked Error"},
    {26, "Poisoned TLP Egress Blocked"},
};

// The severity labels, except that bit 15 names the mask.
template <size_t N>
constexpr std::array<FlagBit, N> Relabel(const FlagBit (&bits)[N], uint8_t bit, const char *label) {
    std::array<FlagBit, N> out = {};
    for (size_t i = 0; i < N; ++i) out[i] = bits[i].bit == bit ? FlagBit{bit, label} : bits[i];
    return out;
}

constexpr auto kUncorrectableMaskBits = Relabel(kSeverityBits, 15, "Completer Abort Mask");

const FlagBit kCorrectableMaskBits[] = {
    {0, "Reciever"},            {6, "Bad TLP"},
    {7, "Bad DLLP"},            {8, "Replay Num Rollover"},
    {12, "Replay Timer"},       {13, "Advisory Non-Fatal"},
    {14, "Corrected Internal"}, {15, "Header log Overflow"},
};

// Bits 20 to 27 are not shown.
const FlagBit kFramingBits[] = {
    {0, "Sync Header Not Same on all Lanes"},
    {1, "Invalid Sync Header"},
    {2, "Not SKP, EIOS, or EIEOS OS in block after EDS"},
    {3, "Any OS Block after SDS OS"},
    {4, "OS Block recevied without EDS for preceding data block"},
    {5, "Not a OS block after EDS"},
    {6, "OS not the same on all lanes"},
    {7, "TLP block CRC error"},
    {8, "All 4 symbols of EDS token not the same"},
    {9, "Not a TLP after EDB"},
    {10, "TLP block length field is 0"},
    {11, "Receive more than 1 STP token in a single symbol time"},
    {12, "Receive more than 1 SDP token in a single symbol time"},
    {13, "Lane between IDL and next potential starting lane are not all IDL"},
    {14, "Invalid framing token"},
    {15, "TLP block length field is 2, 3, or 4"},
    {16, "TLP block length field between 1152 and 1535"},
    {17, "TLP block length field is greater than 1535"},
    {18, "All lanes following first symbol of SKP OS are not correct"},
    {19, "Framing Error 19 Status"},
    {28, "Bad TLP Counter Status"},
    {29, "Bad DLLP Counter Status"},
    {30, "Phy Receive Error Counter Status"},
    {31, "Tic TagScoreboard Timeout Status"},
};

const FlagGroup kErrorStatus = Group("  Error Status:", kErrorStatusBits);
const FlagGroup kUncorrectableStatus = Group("\n\n  Uncorrectable:", kUncorrectableStatusBits);
const FlagGroup kCorrectableStatus = Group("\n\n  Correctable:", kCorrectableStatusBits);
const FlagGroup kCapControl = Group("\n\n  Error Capabilities and Control:", kCapControlBits);
const FlagGroup kSerdesStatus = Group("\n\n  Serdes Error Status:", kSerdesBits);
const FlagGroup kSeverity = Group("\nUncorrectable error severity:", kSeverityBits);
const FlagGroup kUncorrectableMask = Group("\nUncorrectable error mask:", kUncorrectableMaskBits);
const FlagGroup kCorrectableMask = Group("\nCorrectable error mask:", kCorrectableMaskBits);
const FlagGroup kFramingStatus = Group("\nFraming Error Status:\n-----------------------", kFramingBits);

constexpr uint32_t kRamStationsShown = 9;

// The four RAM counters of one instance of a station.
void PrintRamInstance(const ZENTREL_PACKET_RAM_STATION &s, int instance) {
    printf("Instance : %d \n", instance);
    printf("\t\tPayload RAM0 Soft Error Counter : %d \n", static_cast<int>(s.PayloadRam0[instance]));
    printf("\t\tPayload RAM1 Soft Error Counter : %d \n", static_cast<int>(s.PayloadRam1[instance]));
    printf("\t\tHeader RAM0 Soft Error Counter : %d \n", static_cast<int>(s.HeaderRam0[instance]));
    printf("\t\tHeader RAM1 Soft Error Counter : %d \n", static_cast<int>(s.HeaderRam1[instance]));
}

void PrintRamStation(const ZENTREL_PACKET_RAM_STATION &s) {
    PrintRamInstance(s, 0);
    PrintRamInstance(s, 1);
    printf("\tPacketLinkList RAM Soft Error Counter : %d \n", static_cast<int>(s.PacketLinkList));
    printf("\tDestinationQueueLinkList RAM Soft Error Counter : %d \n", static_cast<int>(s.DestinationQueueLinkList));
    printf("\tSourceQueueLinkListRamSoftErrCnt RAM Soft Error Counter : %d \n",
           static_cast<int>(s.SourceQueueLinkList));
    printf("\tDestination Queue Data RAM Soft Error Counter : %d \n", static_cast<int>(s.DestinationQueueData));
    printf("\tRetry Buffer Soft Error Counter : %d \n", static_cast<int>(s.RetryBuffer));
    printf("\tTEC ALUT Ram Soft Err Cnt  : %d \n", static_cast<int>(s.TecAlut));
    printf("\tTEC Global to Local Ram Soft Err Cnt  : %d \n", static_cast<int>(s.TecGlobalToLocal));
    printf("\tTEC DMA Ram0 Soft Err Cnt  : %d \n", static_cast<int>(s.TecDma[0]));
    printf("\tTEC DMA Ram1 Soft Err Cnt  : %d \n", static_cast<int>(s.TecDma[1]));
    printf("\tREGFILE RAM  Err Cnt       : %d \n", static_cast<int>(s.RegisterFile));
}

// The block of one port: counters, then the decode of its error registers.
void PrintPortErrorBlock(FILE *out, uint32_t port, const ZENTREL_SWITCH_PORT_ERROR_STATISTICS &s) {
    fprintf(out, "Port Number : %d \n", s.PortNumber);
    fprintf(out, "Station Number : %d \n", s.StationNumber);
    fprintf(out, "Station Port : %d \n", s.StationPort);
    fprintf(out, "Global Id : %d \n", static_cast<int>(s.GlobalId));
    fprintf(out, "    BadTLPErrors:               %d\n", static_cast<int>(s.BadTlpErrors));
    fprintf(out, "    BadDLLPErrors:              %d\n", static_cast<int>(s.BadDllpErrors));
    fprintf(out, "    PortReceiverErrors:         %d\n", static_cast<int>(s.PortReceiverErrors));
    fprintf(out, "    RecoveryDiagnosticsErrors:  %d\n", static_cast<int>(s.RecoveryDiagnosticsErrors));
    fprintf(out, "    LinkDownCount:              %d\n", static_cast<int>(s.LinkDownCount));
    fprintf(out, "    LinkSpeed:                  %d\n", static_cast<int>(s.LinkSpeed));
    // Headed with the port asked for, which the record's own port number
    // need not match.
    fprintf(out, "\nPort %d Advanced Error Status:\n", static_cast<int>(port));
    PrintStatusFlags(out, kErrorStatus, s.ErrorStatus);
    PrintStatusFlags(out, kUncorrectableStatus, s.UncorrectableStatus);
    PrintStatusFlags(out, kCorrectableStatus, s.CorrectableStatus);
    PrintStatusFlags(out, kCapControl, s.AdvCapControl);
    PrintStatusFlags(out, kSerdesStatus, s.SerdesStatus != 0 ? 1u : 0u);
    PrintSettingFlags(out, kSeverity, s.UncorrectableSeverity);
    PrintSettingFlags(out, kUncorrectableMask, s.UncorrectableMask);
    PrintSettingFlags(out, kCorrectableMask, s.CorrectableMask);
    PrintSettingFlags(out, kFramingStatus, s.FramingStatus);
    fprintf(out, "\n\n");
}

}  // namespace

// Every port 0..143 is asked, whatever the switch's size; a port whose
// read fails is left out without a word.
uint32_t GetPortErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -swerr\n");
        return 0;
    }
    ZENTREL_SWITCH_PORT_ERROR_STATISTICS stats;
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        memset(&stats, 0, sizeof stats);
        if (ZentrelSwitchGetPciPortErrorStatistics(device, port, &stats) != ZENTREL_STATUS_SUCCESS) continue;
        PrintPortErrorBlock(stdout, port, stats);
    }
    return 0;
}

// Status 2 answers for a port the switch does not have; it is not reported.
uint32_t ResetPortErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -resetporterr\n");
        return 0;
    }
    constexpr ZENTREL_STATUS kNoSuchPort = 2;
    for (uint32_t port = 0; port < ZENTREL_PORT_COUNT; ++port) {
        ZENTREL_STATUS status = ZentrelSwitchResetPciPortErrorStatistics(device, port);
        if (status == kNoSuchPort) continue;
        if (status == ZENTREL_STATUS_SUCCESS)
            printf("Reset Port error counters completed successfully for Port %d \n", static_cast<int>(port));
        else
            printf("Reset Port error counters failed with status %x for Port %d \n\n", status, static_cast<int>(port));
    }
    return 0;
}

// Takes no words at all, not even "-h".
uint32_t GetPacketRamErrors(PTR_ZENTREL_DEVICE device, const char *const *, PTR_ZENTREL_DEVICE_INFO) {
    printf("RAM Soft Error Counters:\n");
    auto *count = static_cast<PTR_ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT>(
        AllocZeroed(sizeof(ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT)));
    if (count == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_PACKET_RAM_SOFT_ERROR_COUNT\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchPacketRamSoftErrorCount(device, count);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Error: Library return status :  0x%x\n", status);
        FreeBuffer(count);
        return 1;
    }
    // Stations 9 to 11 of the record are never shown.
    for (uint32_t station = 0; station < kRamStationsShown; ++station) {
        const ZENTREL_PACKET_RAM_STATION &s = count->Stations[station];
        if ((s.Valid & ZENTREL_PKT_RAM_STATION_VALID) == 0) continue;
        printf("Station Number : %d \n", static_cast<int>(station));
        PrintRamStation(s);
        printf("\n\n");
    }
    FreeBuffer(count);
    return 0;
}

uint32_t ResetPacketRamErrors(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -resetpktramerr\n");
        return 0;
    }
    ZENTREL_STATUS status = ZentrelSwitchResetPacketRamSoftErrorCount(device);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Reset RAM soft err count failed with status %x \n\n", status);
        return 1;
    }
    printf("Reset RAM soft err count - Successfully \n");
    return 0;
}
