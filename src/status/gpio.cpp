// GPIO spare state and GPIO pin control.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "status.h"

namespace {

// Fills the request from the operator's answers; false (with the message
// printed) for an opcode the switch does not know.
bool AskGpioRequest(ZENTREL_SWITCH_GPIO_CTRL_REQ *request) {
    uint32_t opcode = AskDecimal({"Input the opcode", " 0 - Set output status", " 1 - Assign GPIO to a PCIe port",
                                  " 2 - Set GPIO multiplexing", " 3 - Get GPIO Status",
                                  " 4 - Get Assigned PCIe port of a GPIO", " 5 - Get GPIO multiplexing"});
    if (opcode > ZENTREL_GPIO_OPCODE_LAST) {  // negative answers included
        printf("Invalid opcode option");
        return false;
    }
    request->Opcode = static_cast<uint8_t>(opcode);
    request->Pin = static_cast<uint8_t>(AskDecimal({"Input the GPIO pin number"}));
    switch (opcode) {
    case ZENTREL_GPIO_SET_OUTPUT: {
        uint32_t level = AskDecimal({"Input the pin status(0 - low, 1 - high)"});
        request->Data = static_cast<uint8_t>((request->Data & ~ZENTREL_GPIO_STATUS_LEVEL) |
                                             (level & ZENTREL_GPIO_STATUS_LEVEL));
        break;
    }
    case ZENTREL_GPIO_ASSIGN_PORT:
        request->Data = static_cast<uint8_t>(AskDecimal({"Input the PCIe port the GPIO pin is assigned to"}));
        break;
    case ZENTREL_GPIO_SET_ALT_DSEL: {
        uint32_t select =
            AskDecimal({"Enter the AltDSel value for the target Gpio(See mfg xml cfg page E013 AltDSel table)"});
        request->Data = static_cast<uint8_t>((request->Data & ~ZENTREL_GPIO_ALT_DSEL_MASK) |
                                             (select & ZENTREL_GPIO_ALT_DSEL_MASK));
        break;
    }
    default:
        break;
    }
    return true;
}

}  // namespace

uint32_t GetGpioSpareState(PTR_ZENTREL_DEVICE device) {
    ZENTREL_SWITCH_GPIO_SPARE_STATE state = {};
    ZENTREL_STATUS status = ZentrelSwitchGetGPIOSpareState(device, &state);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get the GPIO SPARE Info status:0x%x", status);
        return status;
    }
    printf("Switch GPIO Spare State information:\n");
    printf("GPIO Data Low(0-31)\t\t: %x\n", state.GpioDataLow);
    printf("GPIO Data High(32-63)      : %x\n", state.GpioDataHigh);
    printf("SPARE Data(0-7)            : %x\n", state.SpareData);
    return status;
}

// Called with words (never from the command line, as no command word leads
// here) nothing is asked: the zero-filled request sets pin 0 low.
uint32_t GpioControl(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_GPIO_CTRL_REQ request = {};
    ZENTREL_SWITCH_GPIO_CTRL_RESP response = {};
    if (words == nullptr && !AskGpioRequest(&request)) return 1;
    ZENTREL_STATUS status = ZentrelSwitchHandleGpioCtrlCmd(device, &request, &response);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" Failed with status %x\n", status);
        return 1;
    }
    printf("Gpio Ctrl is successful\n");
    printf("Opcode =%d\n", response.Opcode);
    printf("GPIO pin number =%d\n", response.Pin);
    switch (request.Opcode) {
    case ZENTREL_GPIO_GET_STATUS:
        printf("%s : %s\n", "PinStatus", (response.Data & ZENTREL_GPIO_STATUS_LEVEL) ? "high" : "low");
        printf("%s : %s\n", "PinDirection", (response.Data & ZENTREL_GPIO_STATUS_OUTPUT) ? "output" : "input");
        break;
    case ZENTREL_GPIO_GET_PORT:
        printf("PCIe port the GPIO pin is assigned =%d\n", response.Data);
        break;
    case ZENTREL_GPIO_GET_ALT_DSEL:
        printf("AltDSel value for the target Gpio =%d\n", static_cast<int>(response.Data & ZENTREL_GPIO_ALT_DSEL_MASK));
        break;
    default:
        break;
    }
    return 0;
}
