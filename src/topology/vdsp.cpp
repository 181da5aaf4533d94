// -bindoption (menu 49): binding a downstream port to a host port's vDSP
// and unbinding it; menu 56: a host port's vDSPs.
#include <cstdio>

#include "frontend/helpers.h"
#include "frontend/input.h"
#include "topology.h"

namespace {

constexpr uint32_t kBind = 1;
constexpr uint32_t kUnbind = 2;

struct BindRequest {
    uint32_t option;
    uint32_t dsPort, dsSwitch;
    uint32_t hostPort, hostSwitch;
    uint32_t vdsp;
    uint32_t rule;
};

const char *const kRuleLines[] = {
    "1 - Runtime change only",
    "2 - No runtime change, update the config page for change to be persistent",
    "3 - Runtime change and update the config page for change to be persistent",
};

void PrintUsage() {
    printf("Usage : zentrelLibTest -i 0 -bindOption <option> -dsPort <downstream-port> -dsPortSwitchNum <value> "
           "-hostPort <host-port> -hostPortSwitchNum <value> -vDSPId <value> -assignRule <rule>\n");
    printf("Options : \n");
    printf("bindOption : 1 - Bind, 2 - Unbind\n");
    printf("assignRule : \n");
    for (const char *line : kRuleLines) printf("%s\n", line);
}

struct NumberWord {
    size_t index;
    uint32_t *place;
    const char *failure;
};

// The values stand at every other word; the flag words between them are
// not compared.
bool ReadWords(const char *const *words, BindRequest *r) {
    if (ParseUnsignedDecimal(WordAt(words, 0), &r->option) != 0) {
        printf("Failed to get bind option.\n");
        return false;
    }
    if (r->option > kUnbind) {
        printf("Invalid bind option");
        return false;
    }
    const NumberWord bind[] = {
        {2, &r->dsPort, "Failed to get DS Port.\n"},
        {4, &r->dsSwitch, "Failed to get DS Port switch number.\n"},
        {6, &r->hostPort, "Failed to get host Port.\n"},
        {8, &r->hostSwitch, "Failed to get Host Port switch number.\n"},
        {10, &r->vdsp, "Failed to get vDSP Id.\n"},
        {12, &r->rule, "Failed to get assign rule.\n"},
    };
    // Without a downstream port, the host port's words move up by four.
    size_t skipped = r->option == kBind ? 0 : 2;
    for (const NumberWord *w = bind + skipped; w != bind + 6; ++w) {
        if (ParseUnsignedDecimal(WordAt(words, w->index - 2 * skipped), w->place) != 0) {
            printf("%s", w->failure);
            return false;
        }
    }
    return true;
}

bool AskRequest(BindRequest *r) {
    printf("Please input the option\n");
    printf(" 1 - Bind DS Port to vDSP\n");
    printf(" 2 - Unbind DS Port to vDSP\n");
    ScanDecimal(&r->option);
    if (r->option > kUnbind) {
        printf("Invalid bind option\n");
        return false;
    }
    if (r->option == kBind) {
        printf("Input the downstream port:");
        ScanDecimal(&r->dsPort);
        printf("Input the downstream port switch number:");
        ScanDecimal(&r->dsSwitch);
    }
    printf("Input the host port:");
    ScanDecimal(&r->hostPort);
    printf("Input the host port switch number:");
    ScanDecimal(&r->hostSwitch);
    printf("Input the vDSP ID:");
    ScanDecimal(&r->vdsp);
    printf("Input the assignment rule:\n");
    for (const char *line : kRuleLines) printf("%s\n", line);
    ScanDecimal(&r->rule);
    return true;
}

}  // namespace

uint32_t BindVdsp(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    BindRequest r = {};
    if (words != nullptr) {
        if (WantsUsageOrMissing(words)) {
            PrintUsage();
            return 0;
        }
        if (!ReadWords(words, &r)) return 1;
    } else if (!AskRequest(&r)) {
        return 1;
    }
    // The assignment rule goes to the library unchecked.
    uint32_t host = ZENTREL_PORT_DESCRIPTOR(r.hostSwitch, r.hostPort);
    uint16_t vdsp = static_cast<uint16_t>(r.vdsp);
    if (r.option == kBind) {
        ZENTREL_STATUS status =
            ZentrelSwitchPortDsVDspBind(device, ZENTREL_PORT_DESCRIPTOR(r.dsSwitch, r.dsPort), host, r.rule, vdsp);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("Bind unsuccessful - status:%x\n", status);
            return 1;
        }
        printf("Bind successful\n");
    } else if (r.option == kUnbind) {
        ZENTREL_STATUS status = ZentrelSwitchPortDsVDspUnbind(device, host, r.rule, vdsp);
        if (status != ZENTREL_STATUS_SUCCESS) {
            printf("Unbind unsuccessful - status:%x\n", status);
            return 1;
        }
        printf("Unbind successful\n");
    }
    return 0;  // option 0 asks for nothing
}

uint32_t ReadHostPortVdspInfo(PTR_ZENTREL_DEVICE device) {
    // Never released, as this reader has always left it (tests/lsan.supp).
    auto *info = static_cast<PTR_ZENTREL_SWITCH_HOST_PORT_VDSP_INFO>(AllocZeroed(sizeof(ZENTREL_SWITCH_HOST_PORT_VDSP_INFO)));
    if (info == nullptr) {
        printf("Unable to allocate buffer for ZENTREL_SWITCH_HOST_PORT_VDSP_INFO\n");
        return 1;
    }
    int32_t hostPort = 0, hostSwitch = 0;
    printf("Input the host port:");
    ScanDecimal(&hostPort);
    printf("Input the host port switch number:");
    ScanDecimal(&hostSwitch);
    ZENTREL_STATUS status = ZentrelSwitchGetHostPortVDSPInfo(
        device, ZENTREL_PORT_DESCRIPTOR(static_cast<uint32_t>(hostSwitch), static_cast<uint32_t>(hostPort)), info);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Could not read the host port vDSP information. Status:%x", status);
        return status;
    }
    if (info->NumEntries == 0) {
        printf("Number of virtual DSPs is 0 for host port:%d\n", hostPort);
        return 0;
    }
    printf("Host port vDSP information:\n");
    printf("Host port:%d\n", hostPort);
    for (uint32_t i = 0; i < info->NumEntries; ++i) {
        const ZENTREL_VDSP_ENTRY &e = info->Entries[i];
        if (e.Valid == 0) continue;
        printf("\tvDSP index:%d\n", static_cast<int>(i));
        printf("\t\tvDSP identifier to which downstream port to be bound:%d\n", e.VdspId);
        if (e.PhysicalPort < ZENTREL_VDSP_NO_PORT)
            printf("\t\tPhysical downstream port Number:%d\n", e.PhysicalPort);
        else
            printf("\t\tNo physical downstream port assigned to vDSP\n");
        printf("\t\tSwitch Id where the physical downstream port is connected:%d\n", e.SwitchId);
    }
    return 0;
}
