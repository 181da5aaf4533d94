// Health-logging configuration: the global trace severity threshold and
// the trace masks of the firmware subsystems.
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "status.h"

namespace {

constexpr uint32_t kLastSetOption = ZENTREL_HEALTH_SET_TRACE_MASK;
constexpr uint32_t kLastGetOption = ZENTREL_HEALTH_GET_TRACE_MASK;
constexpr uint32_t kLastUpdateOption = ZENTREL_HEALTH_UPDATE_MASK;
constexpr uint32_t kLastSubsystem = ZENTREL_HEALTH_SUBSYSTEM_COUNT - 1;

// The list of firmware subsystems, by the numbers the trace masks use.
uint32_t AskSubsystem() {
    return AskDecimal({"Input the subsystem trace mask", " 0 - HALI", " 1 - FWCORE", " 2 - SES", " 3 - PMG",
                       " 4 - OEM", " 5 - BPL", " 6 - OOB", " 7 - SPI", " 8 - SEC", " 9 - SMM"});
}

void PrintSetUsage() {
    printf("Usage : zentrelLibTest -i 0 -SetHealthCfg <SetOpt> <UpdateOpt> <TraceLev> <SubSys> <TraceMask>\n");
    printf("Options : \n");
    printf("SetOpt\t\t\t: 0 - Set trace severity , 1 - Set a tarce mask\n");
    printf("UpdateOpt\t\t: 1 - Runtime variable only , 2 - Configuration page only , 3 - Both\n");
    printf("TraceLev\t\t: 0 - Debug , 1 - Info , 2 - Warning , 3 - Error\n");
    printf("SubSys\t\t\t: 0 - HALI , 1 - FWCORE , 2 - SES , 3 - PMG , 4 - OEM , "
           "5 - BPL , 6 - OOB , 7 - SPI , 8 - SEC , 9 - SMM\n");
    printf("TraceMask\t\t: New trace mask in hex\n");
}

void PrintGetUsage() {
    printf("Usage : zentrelLibTest -i 0 -GetHealthCfg <GetOpt> <Subsys> \n");
    printf("Options: \n");
    printf("GetOpt\t: 0 - Get trace severity , 1 - Get a tarce mask\n");
    printf("Subsys\t: 0 - HALI , 1 - FWCORE , 2 - SES , 3 - PMG , 4 - OEM , "
           "5 - BPL , 6 - OOB , 7 - SPI , 8 - SEC , 9 - SMM\n");
}

// The words are read by position: the set option, the update option, then
// the severity, or the subsystem and its mask in hex. A missing word fails
// like a word that is not a number. Negative numbers count as too large.
bool ReadSetWords(const char *const *words, ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ *request) {
    int32_t setOption = 0;
    if (ParseDecimal(WordAt(words, 0), &setOption) != 0) {
        printf("Failed to get set option.\n");
        return false;
    }
    if (static_cast<uint32_t>(setOption) > kLastSetOption) {
        printf("Invalid set option");
        return false;
    }
    int32_t update = 0;
    if (ParseDecimal(WordAt(words, 1), &update) != 0) {
        printf("Failed to get update  option.\n");
        return false;
    }
    // 0 names neither copy but is the library's to judge.
    if (static_cast<uint32_t>(update) > kLastUpdateOption) {
        printf("Invalid Update Option");
        return false;
    }
    int32_t value = 0;
    if (ParseDecimal(WordAt(words, 2), &value) != 0) {
        printf("Failed to get config option.\n");
        return false;
    }
    uint32_t mask = 0;
    if (static_cast<uint32_t>(setOption) == ZENTREL_HEALTH_SET_SEVERITY) {
        if (static_cast<uint32_t>(value) > ZENTREL_HEALTH_SEVERITY_LAST) {
            printf("Invalid trace severity threshold\n");
            return false;
        }
    } else {
        if (static_cast<uint32_t>(value) > kLastSubsystem) {
            printf("Invalid subsystem trace mask\n");
            return false;
        }
        if (ParseUnsignedHex(WordAt(words, 3), &mask) != 0) {
            printf("Failed to get trace option.\n");
            return false;
        }
    }
    request->SetOption = static_cast<uint8_t>(setOption);
    request->UpdateOption = static_cast<uint8_t>(static_cast<uint32_t>(update) & ZENTREL_HEALTH_UPDATE_MASK);
    request->Value = static_cast<uint8_t>(value);
    request->TraceMask = mask;
    return true;
}

// The menu asks one value at a time; only the set option is checked.
bool AskSetRequest(ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ *request) {
    uint32_t setOption = AskDecimal({"Input the option", " 0 - Set trace severity", " 1 - Set a tarce mask"});
    uint32_t update = AskDecimal({"Input the update option", " 1 - Runtime variable only",
                                  " 2 - Configuration page only", " 3 - Both runtime variable and configuration page"});
    uint32_t value = 0;
    uint32_t mask = 0;
    if (setOption == ZENTREL_HEALTH_SET_SEVERITY) {
        value = AskDecimal({"Input the new trace severity threshold to set", " 0 - Debug", " 1 - Info",
                            " 2 - Warning", " 3 - Error"});
    } else if (setOption == ZENTREL_HEALTH_SET_TRACE_MASK) {
        value = AskSubsystem();
        printf("Input the new trace mask to set(In Hex)\n");
        FlushInput();
        ScanHex(&mask);
    } else {
        printf("Invalid input option");
        return false;
    }
    request->SetOption = static_cast<uint8_t>(setOption);
    request->UpdateOption = static_cast<uint8_t>(update & ZENTREL_HEALTH_UPDATE_MASK);
    request->Value = static_cast<uint8_t>(value);
    request->TraceMask = mask;
    return true;
}

bool ReadGetWords(const char *const *words, ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ *request) {
    int32_t option = 0;
    if (ParseDecimal(WordAt(words, 0), &option) != 0) {
        printf("Failed to get the get option.\n");
        return false;
    }
    if (static_cast<uint32_t>(option) > kLastGetOption) {
        printf("Invalid option");
        return false;
    }
    request->GetOption = static_cast<uint8_t>(option);
    if (request->GetOption == ZENTREL_HEALTH_GET_TRACE_MASK) {
        int32_t subsystem = 0;
        if (ParseDecimal(WordAt(words, 1), &subsystem) != 0) {
            printf("Failed to get trace option.\n");
            return false;
        }
        if (static_cast<uint32_t>(subsystem) > kLastSubsystem) {
            printf("Invalid subsystem values\n");
            return false;
        }
        request->Subsystem = static_cast<uint8_t>(subsystem);
    }
    return true;
}

// Nothing is checked in the menu: the library judges the option and the
// subsystem.
void AskGetRequest(ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ *request) {
    request->GetOption =
        static_cast<uint8_t>(AskDecimal({"Input the option", " 0 - Get trace severity", " 1 - Get a tarce mask"}));
    if (request->GetOption == ZENTREL_HEALTH_GET_TRACE_MASK) request->Subsystem = static_cast<uint8_t>(AskSubsystem());
}

}  // namespace

uint32_t SetHealthConfig(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_SET_HEALTH_CONFIG_REQ request = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintSetUsage();
            return 0;
        }
        if (!ReadSetWords(words, &request)) return 1;
    } else if (!AskSetRequest(&request)) {
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchSetHealthConfig(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Set health config is successful\n");
    return 0;
}

uint32_t GetHealthConfig(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_GET_HEALTH_CONFIG_REQ request = {};
    ZENTREL_SWITCH_GET_HEALTH_CONFIG_RESP response = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintGetUsage();
            return 0;
        }
        if (!ReadGetWords(words, &request)) return 1;
    } else {
        AskGetRequest(&request);
    }
    ZENTREL_STATUS status = ZentrelSwitchGetHealthConfig(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    // The mask, too, is shown in decimal.
    if (request.GetOption == ZENTREL_HEALTH_GET_SEVERITY)
        printf("This is the current runtime trace severity threshold=%d\n", static_cast<int>(response.Value));
    else if (request.GetOption == ZENTREL_HEALTH_GET_TRACE_MASK)
        printf("This is one of the current runtime subsystem trace masks=%d\n", static_cast<int>(response.Value));
    return 0;
}
