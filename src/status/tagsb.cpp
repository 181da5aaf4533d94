// Tag scoreboard time-out of a station, at runtime and in the persistent
// page in flash.
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "status.h"

namespace {

constexpr uint32_t kLastUpdateMode = ZENTREL_TAG_SB_UPDATE_BOTH;
constexpr uint32_t kLastQueryMode = ZENTREL_TAG_SB_QUERY_FLASH;

// The usage shows flag words, but the values are read strictly by
// position: "2 -UpdateMode 1 ..." fails at the flag word.
bool ReadSetWords(const char *const *words, ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ *request) {
    int32_t station = 0;
    if (ParseDecimal(WordAt(words, 0), &station) != 0) {
        printf("Failed to get Station number.\n");
        return false;
    }
    int32_t mode = 0;
    if (ParseDecimal(WordAt(words, 1), &mode) != 0) {
        printf("Failed to get Update mode option.\n");
        return false;
    }
    if (static_cast<uint32_t>(mode) > kLastUpdateMode) {  // negative numbers count as too large
        printf("Invalid Update Option\n");
        return false;
    }
    int32_t timeout = 0;
    if (ParseDecimal(WordAt(words, 2), &timeout) != 0) {
        printf("Failed to get Timeout value.\n");
        return false;
    }
    request->Station = static_cast<uint8_t>(station);
    request->UpdateMode = static_cast<uint8_t>(mode);
    request->TimeoutMs = static_cast<uint16_t>(timeout);
    return true;
}

bool AskSetRequest(ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ *request) {
    uint32_t station = AskDecimal({"Input the Station number to be updated"});
    uint32_t mode = AskDecimal({"Input the Update Mode", " 0 - Update mode runtime", " 1 - Update mode flash",
                                " 2 - Update mode both"});
    if (mode > kLastUpdateMode) {
        printf("Invalid Update Option\n");
        return false;
    }
    uint32_t timeout = AskDecimal({"Input the New TagSBTimeout value in ms to be updated"});
    request->Station = static_cast<uint8_t>(station);
    request->UpdateMode = static_cast<uint8_t>(mode);
    request->TimeoutMs = static_cast<uint16_t>(timeout);
    return true;
}

bool ReadGetWords(const char *const *words, ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ *request) {
    int32_t station = 0;
    if (ParseDecimal(WordAt(words, 0), &station) != 0) {
        printf("Failed to get the Station number.\n");
        return false;
    }
    int32_t mode = 0;
    if (ParseDecimal(WordAt(words, 1), &mode) != 0) {
        printf("Failed to get Query Mode.\n");
        return false;
    }
    if (static_cast<uint32_t>(mode) > kLastQueryMode) {
        printf("Invalid Query Mode.\n");
        return false;
    }
    request->Station = static_cast<uint8_t>(station);
    request->QueryMode = static_cast<uint8_t>(mode);
    return true;
}

bool AskGetRequest(ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ *request) {
    uint32_t station = AskDecimal({"Input the Station to be queried"});
    uint32_t mode = AskDecimal({"Input the Query Mode", " 0 - Query mode runtime", " 1 - Query mode flash"});
    if (mode > kLastQueryMode) {
        printf("Invalid Query Mode.\n");
        return false;
    }
    request->Station = static_cast<uint8_t>(station);
    request->QueryMode = static_cast<uint8_t>(mode);
    return true;
}

}  // namespace

uint32_t SetTagSbTimeout(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_SET_TAG_SB_TIMEOUT_REQ request = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage : zentrelLibTest -i 0 -SetTagSbTimeout <Stn> -UpdateMode <option> -Timeout <option> \n");
            printf("Options   : \n");
            printf("Stn       : Station number to be updated\n");
            printf("UpdateOpt : 0 - Update mode runtime, 1 - Update mode flash, 2 - Update mode both\n");
            printf("Timeout   : New TagSBTimeout value in ms \n");
            return 0;
        }
        if (!ReadSetWords(words, &request)) return 1;
    } else if (!AskSetRequest(&request)) {
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchSetTagSBTimeout(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Set Tag Scoreboard Timeout is successful\n");
    return 0;
}

uint32_t GetTagSbTimeout(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_REQ request = {};
    ZENTREL_SWITCH_GET_TAG_SB_TIMEOUT_RESP response = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage : zentrelLibTest -i 0 -GetTagSbTimeout <Stn>  -QryMod <option> \n");
            printf("Options: \n");
            printf("Stn     : Station to be queried \n");
            printf("QryMod  : 0 - Query mode runtime, 1 - Query mode flash \n");
            return 0;
        }
        if (!ReadGetWords(words, &request)) return 1;
    } else if (!AskGetRequest(&request)) {
        return 1;
    }
    ZENTREL_STATUS status = ZentrelSwitchGetTagSBTimeout(device, &request, &response, request.QueryMode);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Station Number : %d \n", response.Station);
    if (response.Flags & ZENTREL_TAG_SB_STATION_ENABLED)
        printf("Station timeout is enabled\n");
    else
        printf("Device TagSBTimeout is applied to all stations in the switch\n");
    printf("TagSBTimeout value : %d ms\n", response.TimeoutMs);
    return 0;
}
