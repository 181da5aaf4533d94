// Temperature, versions, manufacturing and wafer data, switch time and the
// library's own parameters, as the simulated switches report them.
#include "sim.h"

namespace sim {

void SetSettingsDefaults(Device &device, size_t index) {
    // A die a little warmer on the busier switch.
    device.temperature = index == 0 ? 52 : 47;
}

int ApplySettingsKey(Device &device, const std::string &key, const Json &value, std::string *error) {
    uint64_t v = 0;
    if (key == "temperature") {
        if (!ReadNumber(value, UINT32_MAX, &v, error)) return -1;
        device.temperature = static_cast<uint32_t>(v);
        return 1;
    }
    return 0;
}

}  // namespace sim

ZENTREL_API ZENTREL_STATUS ZentrelGetTemperature(PTR_ZENTREL_DEVICE Device, uint32_t *Temperature) {
    sim::Call call(__func__);
    call.Dev(Device);
    if (!call.Proceed()) return call.Result();
    if (Temperature == nullptr) return call.Return(sim::kStatusInvalidParameter);
    *Temperature = call.Target().temperature;
    return call.Return(ZENTREL_STATUS_SUCCESS);
}
