// The printable names of LTSSM state codes.
#include <cstring>

#include "link.h"

namespace {

struct NamedState {
    uint16_t code;
    const char *name;
};

// Whole names, looked up by exact code; every name ends in one blank.
const NamedState kStates[] = {
    {0x000, "Detect.Quiet "},      {0x001, "Detect.Active "},     {0x002, "Detect.Rate "},
    {0x003, "Detect.Wait12ms "},   {0x004, "Detect.P1_Req "},     {0x005, "Detect.Donest "},
    {0x006, "Detect.P0_Req "},     {0x007, "Detect.RateOk "},     {0x009, "Detect.SpcOp "},
    {0x00A, "Detect.DET_WAIT_P1_ST "}, {0x00B, "Detect.DET_WAIT_RATE_ST "},
    {0x101, "Polling.P0_Req "},    {0x103, "Polling.Active "},    {0x106, "Polling.Done "},
    {0x107, "Polling.Config "},    {0x10A, "Polling.TxEIOS "},    {0x10B, "Polling.Compliance "},
    {0x10E, "Polling.EIdle "},     {0x10F, "Polling.Speed "},
    {0x200, "CFG.Idle "},          {0x201, "CFG.LW_Start_Dn "},   {0x202, "CFG.LN_Wait_Dn "},
    {0x203, "CFG.LW_Accept_Dn "},  {0x204, "CFG.TxIdle "},        {0x206, "CFG.LN_Accept_Dn "},
    {0x207, "CFG.Complete_Dn "},   {0x208, "CFG.LN_Wait_Up "},    {0x20C, "CFG.LN_Accept_Up "},
    {0x20E, "CFG.Done_St "},       {0x20F, "CFG.TxCtlSkip "},     {0x210, "CFG.LW_Start_Up "},
    {0x211, "CFG.XLinkArb_Won "},  {0x214, "CFG.TxSDSM "},        {0x218, "CFG.LW_Accept_Up "},
    {0x21C, "CFG.Complete_Up "},
    {0x300, "L0_Idle "},           {0x301, "L0 "},                {0x302, "L0s "},
    {0x303, "L0_TxEIOS "},         {0x304, "LinkDown "},          {0x305, "LDWait "},
    {0x307, "L1 "},                {0x309, "L0_Recovery "},       {0x30B, "L2 "},
    {0x30D, "ActRec "},
    {0x400, "Recovery.Idle "},     {0x401, "Recovery.RcvrLock "}, {0x402, "Recovery.TxEIOS "},
    {0x403, "Recovery.RcvrCfg "},  {0x405, "Recovery.EqPh1_Dn "}, {0x407, "Recovery.Speed "},
    {0x408, "Recovery.TxEIEOS "},  {0x409, "Recovery.Reset "},    {0x40A, "Recovery.Disable "},
    {0x40B, "Recovery.TxIdle "},   {0x40C, "Recovery.ErrCfg "},   {0x40D, "Recovery.TxSDSM "},
    {0x40E, "Recovery.ErrDet "},   {0x40F, "Recovery.Loopback "}, {0x410, "Recovery.EqPh3_Up "},
    {0x411, "Recovery.EqPh0_Up "}, {0x415, "Recovery.EqPh2_Dn "}, {0x417, "Recovery.EqPh3_Dn "},
    {0x418, "Recovery.EqPh2_Up "}, {0x419, "Recovery.EqPh1_Up "}, {0x41E, "Recovery.TxCtlSKP "},
    {0x41F, "Recovery.MyEqPhase "},
    {0x500, "LB_Idle "},           {0x501, "LB_Entry "},          {0x504, "LB_SlvEntry "},
    {0x506, "LB_TxEIOS "},         {0x509, "LB_ActMst "},         {0x50A, "LB_ActSlv "},
    {0x50B, "LB_ExitSt "},         {0x50C, "LB_Speed "},          {0x50F, "LB_Eidle "},
    {0x600, "HR_Idle "},           {0x601, "HR_Dir "},            {0x602, "HR_Rcv "},
    {0x603, "HR_Tx "},             {0x604, "HR_TxEIOS_1 "},       {0x605, "HR_TxEIEOS "},
    {0x606, "HR_RcvWait "},        {0x607, "HR_TxEIOS "},
    {0x700, "DISABLE_Idle "},      {0x701, "DISABLE_TxTS1 "},     {0x703, "DISABLE_TxEIOS "},
    {0x704, "DISABLE_Done "},      {0x706, "DISABLE_P1_Req "},    {0x707, "DISABLE_WaitEIOS "},
    {0x709, "DISABLE_TxEIEOS "},   {0x70E, "DISABLE_RateOk "},    {0x70F, "DISABLE_Rate "},
    {0x800, "LP_Idle "},           {0x801, "LP_L0sEntry "},       {0x802, "LP_L0sIdle "},
    {0x803, "LP_L0sTxFTS "},       {0x804, "LP_L0sTxSKP "},       {0x80A, "LP_L0sTxEIE "},
    {0x80C, "LP_L0sTxSDSM "},
    {0x900, "LP_Idle "},           {0x905, "LP_L1RxEIOS "},       {0x906, "LP_L1Idle "},
    {0xA00, "LP_Idle "},           {0xA08, "LP_L2RxEIOS "},       {0xA09, "LP_L2Rate "},
    {0xA0D, "LP_L2RateOk "},       {0xA0F, "LP_L2Idle "},
};

const char kUnknownState[] = "Unknown State ";

// Room for any name; assembled here, then copied whole to the caller.
constexpr size_t kScratchSize = 96;

}  // namespace

uint32_t LtssmStateName(uint32_t stateCode, char *nameBuffer) {
    uint32_t code = stateCode & 0xFFFu;
    const char *name = kUnknownState;
    for (const NamedState &state : kStates)
        if (state.code == code) name = state.name;
    char scratch[kScratchSize] = {};
    strncpy(scratch, name, kScratchSize - 1);
    memcpy(nameBuffer, scratch, strlen(scratch) + 1);
    return 0;
}
