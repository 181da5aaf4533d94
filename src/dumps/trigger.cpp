// The conditions under which the switch firmware takes a core dump by
// itself, and whether a new dump overwrites the one it holds.
#include <cstdio>

#include "dumps.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

namespace {

constexpr uint32_t kLastSetOperation = ZENTREL_TRIGGER_CLEAR_OVERWRITE;
constexpr uint32_t kLastGetOperation = ZENTREL_TRIGGER_GET_OVERWRITE;
// The query accepts a fourth module type, which it then refuses silently.
constexpr uint32_t kLastQueryModule = 4;
constexpr uint32_t kLastStation = 9;
constexpr uint32_t kLastQueryPort = 142;
constexpr uint32_t kLastQueryType = ZENTREL_TRIGGER_PERSISTENT;
constexpr uint32_t kNotSupported = 9;

uint32_t AskModuleType() {
    return AskDecimal({"Select the module type/TriggerModuleType to apply the Update Trigger for dump policy",
                       " 1 - this is the Port #", " 2 - this is the Station #", " 3 - this is the Switch #"});
}

void PrintBadModuleType() {
    printf(" Invalid user input for the trigger module type for dump policy operation\n");
}

// Each asks the request's values; false when an answer ends the handler
// (with the handler's result set, for the set request).
bool AskSetRequest(ZENTREL_SWITCH_SET_TRIGGER_COND_REQ *request, uint32_t *result) {
    *result = 1;
    uint32_t operation = AskDecimal({"Select the operation to be performed for Update Trigger for dump policy ",
                                     " 0 - Set/clear the trigger conditions.", " 1 - Set the dump overwrite policy.",
                                     " 2 - Clear the dump overwrite policy."});
    if (operation > kLastSetOperation) {
        printf(" Invalid user input for the update trigger for dump policy operation");
        return false;
    }
    request->Operation = static_cast<uint8_t>(operation);
    uint32_t module = AskModuleType();
    if (module < ZENTREL_TRIGGER_MODULE_PORT || module > ZENTREL_TRIGGER_MODULE_SWITCH) {
        PrintBadModuleType();
        return false;
    }
    request->ModuleType = static_cast<uint8_t>(module);
    // Only ports are set here.
    if (module != ZENTREL_TRIGGER_MODULE_PORT) {
        *result = kNotSupported;
        return false;
    }
    request->Port = static_cast<uint8_t>(AskDecimal(
        {" Enter the valid port number # (0 to 143) or 255 to monitor all the active downstream ports"}));
    request->ConditionBitmap |= static_cast<uint16_t>(AskDecimal(
        {"Enter the trigger condition Bit map to Set/Clear", " 0 - clear Both Fatal/Non-Fatal AER Port.",
         " 1 - set Non-Fatal AER Port Errors and clear Fatal AER Port Errors.",
         " 2 - set Fatal AER Port Errors and clear Non-Fatal AER Port Errors.",
         " 3 - set both Fatal/Non-Fatal AER Port Errors."}));
    request->SettingsType = static_cast<uint8_t>(
        AskDecimal({"Enter the settings type", " 0 - Update settings run-time", " 1 - Update settings runtime+persist"}));
    return true;
}

bool AskGetRequest(ZENTREL_SWITCH_GET_TRIGGER_COND_REQ *request) {
    uint32_t operation = AskDecimal({"Select the operation to be performed for Get Trigger for dump policy ",
                                     " 0 - Get the trigger conditions active for the given module.",
                                     " 1 - Get the current dump overwrite policy."});
    if (operation > kLastGetOperation) {
        printf(" Invalid user input for the Get trigger for dump policy operation\n");
        return false;
    }
    request->Operation = static_cast<uint8_t>(operation);
    uint32_t module = AskModuleType();
    if (module < ZENTREL_TRIGGER_MODULE_PORT || module > kLastQueryModule) {
        PrintBadModuleType();
        return false;
    }
    request->ModuleType = static_cast<uint8_t>(module);
    if (module == ZENTREL_TRIGGER_MODULE_STATION) {
        uint32_t station = AskDecimal({" Enter the station number #"});
        if (station > kLastStation) {
            printf("invalid station number specified\n");
            return false;
        }
        request->Number = static_cast<uint8_t>(station);
    } else if (module == ZENTREL_TRIGGER_MODULE_PORT) {
        uint32_t port = AskDecimal({" Enter the Port #"});
        if (port > kLastQueryPort) {
            printf("invalid portnumber specified\n");
            return false;
        }
        request->Number = static_cast<uint8_t>(port);
    } else if (module == kLastQueryModule) {
        return false;
    }
    uint32_t query = AskDecimal({"Input query types for the trigger settings",
                                 " 0 - Query the requested information from runtime setting",
                                 " 1 - Query the requested information from the Default page/Persistent page in "
                                 "case a persistent copy is present"});
    if (query > kLastQueryType) {
        printf(" Invalid user input for query settings option\n");
        return false;
    }
    request->QueryType = static_cast<uint8_t>(query);
    return true;
}

void PrintTriggerAnswer(const ZENTREL_SWITCH_GET_TRIGGER_COND_REQ &request,
                        const ZENTREL_SWITCH_GET_TRIGGER_COND_RESP &response) {
    printf("Get Trigger condition for core dump is successful\n");
    uint32_t bitmap = response.ConditionBitmap;
    if (request.Operation == ZENTREL_TRIGGER_GET_OVERWRITE) {
        uint32_t overwrite = bitmap & 1u;
        if (overwrite != 0)
            printf("dump due to trigger condition will be overwritten with the new dump that gets generated due to "
                   "the same or a different trigger condition \n");
        else
            printf("Existing dump due to trigger condition will be retained and the new dump that gets generated due "
                   "to same/other trigger conditions will be ignored\n");
        printf("Dump Overwrite returned : %d\n", static_cast<int>(overwrite));
    } else if (request.Operation == ZENTREL_TRIGGER_GET_CONDITIONS) {
        if (bitmap == ZENTREL_TRIGGER_AER_NON_FATAL)
            printf("SMAPI_PORT_TRIGGER_DUMP_AER_NON_FATAL_ERROR bit map value is %d \n", static_cast<int>(bitmap));
        else if (bitmap == ZENTREL_TRIGGER_AER_FATAL)
            printf("SMAPI_PORT_TRIGGER_DUMP_AER_FATAL_ERROR bit map value is %d \n", static_cast<int>(bitmap));
        else
            printf("SMAPI_PORT_TRIGGER_DUMP_CONDITION_MAX and TriggerModuleConditionBitmap is : %d\n",
                   static_cast<int>(bitmap));
    }
}

}  // namespace

// With a word list nothing is asked: the zeroed request goes as it is.
uint32_t SetCoreDumpTrigger(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_SET_TRIGGER_COND_REQ request = {};
    if (words == nullptr) {
        uint32_t result = 0;
        if (!AskSetRequest(&request, &result)) return result;
    }
    ZENTREL_STATUS status = ZentrelSwitchSetTriggerCondForCoreDump(device, &request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Update/Set trigger condition for coredump is successful\n");
    return 0;
}

// Its results are the other way round from every other handler: 1 after a
// query the switch answered, 0 when the switch reports it failed.
uint32_t GetCoreDumpTrigger(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_GET_TRIGGER_COND_REQ request = {};
    ZENTREL_SWITCH_GET_TRIGGER_COND_RESP response = {};
    if (words == nullptr && !AskGetRequest(&request)) return 1;
    ZENTREL_STATUS status = ZentrelSwitchGetTriggerCondForCoreDump(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" Get Trigger Condition is failed with status %x\n", status);
        return 1;
    }
    if (response.Result != 0) {
        printf("Get Trigger condition for core dump is failed..\n");
        return 0;
    }
    PrintTriggerAnswer(request, response);
    return 1;
}
