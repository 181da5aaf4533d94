// Setting the switch's clock (-swsettime, menu 84).
#include <cstdio>
#include <cstring>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "settings.h"

namespace {

// Longest time-zone answer kept; only its first bytes reach the switch.
constexpr size_t kTimeZoneText = 256;

bool WordIs(const char *const *words, size_t index, const char *flag) {
    const char *word = WordAt(words, index);
    return word != nullptr && strcmp(word, flag) == 0;
}

// The words stand in fixed places: -l low -h high -d issuer -t hold. A flag
// elsewhere is ignored; a missing word counts as absent. The issuer is
// passed on unchecked and the time zone stays empty.
void ReadTimeWords(const char *const *words, ZENTREL_SWITCH_TIME_REQ *request) {
    printf("values PtrArguments[0]:%s 1:%s 2:%s 3:%s 4:%s\n", Shown(WordAt(words, 0)), Shown(WordAt(words, 1)),
           Shown(WordAt(words, 2)), Shown(WordAt(words, 3)), Shown(WordAt(words, 4)));
    if (WordIs(words, 0, "-l")) ParseUnsignedDecimal(WordAt(words, 1), &request->NewTimeLow);
    if (WordIs(words, 2, "-h")) ParseUnsignedDecimal(WordAt(words, 3), &request->NewTimeHigh);
    if (WordIs(words, 4, "-d")) ParseUnsignedDecimal(WordAt(words, 5), &request->IssuerID);
    if (WordIs(words, 6, "-t")) ParseUnsignedDecimal(WordAt(words, 7), &request->HoldTimeSyncDuration);
}

// Returns false after its message when the answers are refused.
bool AskTime(ZENTREL_SWITCH_TIME_REQ *request) {
    printf("Input time low:");
    ScanUnsigned(&request->NewTimeLow);
    printf("Input time high:");
    ScanUnsigned(&request->NewTimeHigh);
    uint32_t issuer = 0;
    printf("Input IssuerID:");
    ScanUnsigned(&issuer);
    char timeZone[kTimeZoneText] = {};
    printf("Input Timezone:");
    ScanWord(timeZone, sizeof timeZone);
    // A word is never empty: only the end of input leaves it so.
    if (timeZone[0] == '\0') {
        printf("Error : Invalid ITime zone\n");
        return false;
    }
    memcpy(request->Tz, timeZone, strnlen(timeZone, sizeof request->Tz));
    if (issuer > ZENTREL_TIME_ISSUER_MAX) {
        printf("Error : Invalid IssuerID:%d valid valuse are 0-3\n", static_cast<int>(issuer));
        return false;
    }
    request->IssuerID = issuer;
    printf("Input Hold time:");
    ScanUnsigned(&request->HoldTimeSyncDuration);
    return true;
}

}  // namespace

uint32_t SetSwitchTime(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_TIME_REQ request;
    ZENTREL_SWITCH_TIME_RESP response;
    memset(&request, 0, sizeof request);
    memset(&response, 0, sizeof response);
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            printf("Usage: swsettime -i 0 -l <timelow> -h <timehigh> -d <issuerID> -t <HoldTime> \n");
            return 0;
        }
        ReadTimeWords(words, &request);
    } else if (!AskTime(&request)) {
        return 1;
    }
    FieldText timeZone(request.Tz);
    printf("switchTime.NewTimeLow %u\n", request.NewTimeLow);
    printf("switchTime.NewTimeHigh %u\n", request.NewTimeHigh);
    printf("switchTime.IssuerID %u\n", request.IssuerID);
    printf("switchTime.HoldTimeSyncDuration %u\n", request.HoldTimeSyncDuration);
    printf("switchTime.Tz %s\n", timeZone.text);
    ZENTREL_STATUS status = ZentrelSwitchSetTime(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("zntrlSetSwitchTime successful BlockingIssuerID:0x%x\n", response.BlockingIssuerID);
    return 0;
}
