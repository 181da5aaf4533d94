// Generating a debug token in two operations (-GenerateDebugToken, menu
// 103): the claims go to the library, which writes the payload to be signed;
// then the external signature goes to the library, which writes the signed
// token. A claims file keeps the claims of the first operation for the
// second, so that both sign the same payload.
#include <cstdio>

#include "debugtoken.h"
#include "frontend/discovery.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

namespace {

// The claims-file name of the prompted mode holds at most 9 characters.
constexpr size_t kClaimsNameSize = 10;
constexpr size_t kPathSize = 1024;
const char kOneLineClaimsFile[] = "cwt.txt";

// Writes the claims and reads them back into *readBack; false, after a
// message, when the file cannot be created.
bool KeepClaims(const char *name, const ZENTREL_SWITCH_DEBUG_TOKEN_REQ &request,
                ZENTREL_SWITCH_DEBUG_TOKEN_REQ *readBack) {
    FILE *file = fopen(name, "wb");
    if (file == nullptr) {
        printf("Unable to create %s\n", name);
        return false;
    }
    WriteBufferToFile(file, &request, ZENTREL_DEBUG_TOKEN_CLAIM_BYTES);
    fclose(file);
    file = OpenRegularFile(name);
    ReadExact(file, readBack, ZENTREL_DEBUG_TOKEN_CLAIM_BYTES);
    if (file != nullptr) fclose(file);
    return true;
}

// The claims of the first operation; a missing or short file leaves the
// rest of the record as it was.
void LoadClaims(FILE *file, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *request) {
    if (file == nullptr) return;
    ReadExact(file, request, ZENTREL_DEBUG_TOKEN_CLAIM_BYTES);
    fclose(file);
}

// The one-line mode's summary ends in a blank before the newline.
void PrintSummary(const ZENTREL_SWITCH_DEBUG_TOKEN_REQ &r, bool oneLine) {
    printf("persist:%d explimit:%u sdben:%d jtagen:%d i2cen:%d diagen:%d alen:%d peaen:%d fwcli_access:%u "
           "ctilsb:%d ctimsb:%d%s\n",
           r.Persist, r.ExpirationLimit, r.SerialDebug, r.NsJtag, r.HwI2c, r.DiagReadWrite, r.HwAnalysis,
           r.PcieAnalyser, r.FwCliAccess, static_cast<int>(r.CtiLsb), static_cast<int>(r.CtiMsb), oneLine ? " " : "");
}

// The signed operation, once the claims are in the record. The signature
// buffer stays with the library, as it always has.
uint32_t SendSignature(PTR_ZENTREL_DEVICE device, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *request, const char *path) {
    uint8_t *signature = nullptr;
    uint32_t length = 0;
    if (ReadWholeFile(path, &signature, &length) != 0) {
        printf("Firmware file read error.\n");
        return 1;
    }
    request->Signature = signature;
    request->SignatureLength = length;
    request->Operation = ZENTREL_DEBUG_TOKEN_SIGNED_CWT;
    ZENTREL_STATUS status = ZentrelSwitchGenerateDebugToken(device, request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    printf("Generated COSE_Sign1 CBOR file corvanecwt.cbor\n");
    return 0;
}

// Sends the payload operation and keeps its claims.
uint32_t SendClaims(PTR_ZENTREL_DEVICE device, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *request, const char *claimsFile,
                    bool oneLine) {
    ZENTREL_STATUS status = ZentrelSwitchGenerateDebugToken(device, request);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf(" failed with status %x\n", status);
        return 1;
    }
    ZENTREL_SWITCH_DEBUG_TOKEN_REQ readBack = {};
    if (!KeepClaims(claimsFile, *request, &readBack)) return 1;
    PrintSummary(readBack, oneLine);
    printf("Generated Sig_structure CBOR file corvanecwt.cbor\n");
    return 0;
}

uint8_t AskByte(const char *prompt) {
    int32_t value = 0;
    printf("%s", prompt);
    ScanDecimal(&value);
    return static_cast<uint8_t>(value);
}

uint32_t AskWord(const char *prompt) {
    uint32_t value = 0;
    printf("%s", prompt);
    ScanDecimal(&value);
    return value;
}

uint32_t GeneratePrompted(PTR_ZENTREL_DEVICE device, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *request) {
    int32_t operation = 0;
    printf("Enter 1 to generate Sig_Structure. Enter 2 for generating CWT with signature : ");
    ScanDecimal(&operation);
    if (operation != 1 && operation != 2) {
        printf(" Invalid option %d, valid options are 1/2\n", operation);
        return 1;
    }
    request->Operation = static_cast<uint32_t>(operation);
    // Each device index has its own claims file; a long index is cut.
    char claimsFile[kClaimsNameSize] = {};
    snprintf(claimsFile, sizeof claimsFile, "cwt%d.txt", static_cast<int>(gSelectedDeviceIndex));
    if (operation == 1) {
        request->AlgorithmId = AskWord("Enter alg-id                                                           :");
        request->Persist = AskByte("Persist this token on the device (1-Enable/0-Disable)                  :");
        request->ExpirationLimit = AskWord("Input the expiration limit (number of minutes)                         :");
        request->SerialDebug = AskByte("Serial debug on this device (1-Enable/0-Disable)                       :");
        request->NsJtag = AskByte("Non-Secure JTAG (1-Enable/0-Disable)                                   :");
        request->HwI2c = AskByte("hardware I2C (1-Enable/0-Disable)                                      :");
        request->DiagReadWrite = AskByte("Diagnostic Read/Write (0/1)                                            :");
        request->HwAnalysis = AskByte("KAVRIL+ hardware analysis (1-Enable/0-Disable)                         :");
        request->PcieAnalyser = AskByte("PCIe Embedded Analyzer (1-Enable/0-Disable)                            :");
        request->FwCliAccess = AskWord("fwcli access value (0-Default/1-Restricted/2-Full Access/3-Output only):");
        request->NsRegReadWrite = AskByte("Non secure registers access Read/Write  (1-Enable/0-Disable)           :");
        return SendClaims(device, request, claimsFile, false);
    }
    FILE *claims = OpenRegularFile(claimsFile);
    if (claims == nullptr) {
        printf(" ERROR : 103-Option 2 can't be used without generating Sig_signature payload using 103-Option 1.\n");
        return 1;
    }
    LoadClaims(claims, request);
    PrintSummary(*request, false);
    char path[kPathSize] = {};
    printf("Provide signature file                                   :");
    ScanWord(path, sizeof path);
    return SendSignature(device, request, path);
}

// A claim word of the one-line mode: an absent word is an absent claim (0);
// a word that is not a number gives what its digits converted to.
uint32_t ClaimWord(const char *const *words, size_t index) {
    int32_t value = 0;
    const char *word = WordAt(words, index);
    if (word != nullptr) ParseDecimal(word, &value);
    return static_cast<uint32_t>(value);
}

// -o op -a alg -p persist -e minutes -sd sdb -j jtag -i i2c -d diag -al hw
// -pea pea -fwcli access, or -o 2 -s signature: the values stand in fixed
// places and the flag words are never compared.
uint32_t GenerateOneLine(PTR_ZENTREL_DEVICE device, const char *const *words, ZENTREL_SWITCH_DEBUG_TOKEN_REQ *request) {
    printf("%s: ONE_LINE mode PtrArguments[0]:%s %s\n", "zentrelGenerateDebugTokenOLMode", Shown(WordAt(words, 0)),
           Shown(WordAt(words, 1)));
    if (WantsUsage(words)) {
        printf("Usage Generate Sig_Structure      : ./zentrelLibTest -i 0 -GenerateDebugToken -o Operation -a alg_id "
               "-p persist -e exp_time -sd sdb_en -j NsJtagEn -i I2CEn -d DiagrwEn -al HwKavrilEn -pea PeaEn -fwcli "
               "FwCliAccess -s signaturefile\n");
        printf("Usage Generate CWT with Signature : ./zentrelLibTest -i 0 -GenerateDebugToken -o Operation -s sigfile\n");
        printf("Operation : 1 - Generate Sig_Structure, 2 - Generate CWT with Signature\n");
        return 1;
    }
    printf("%s:%s:%s:%s\n", Shown(WordAt(words, 0)), Shown(WordAt(words, 1)), Shown(WordAt(words, 2)),
           Shown(WordAt(words, 3)));
    int32_t operation = 0;
    if (ParseDecimal(WordAt(words, 1), &operation) != 0) {
        printf("Failed to get Operation value.\n");
        return 1;
    }
    // The algorithm check reads the operation word again, so it never fails
    // here; the algorithm itself is taken below without a check.
    int32_t checked = 0;
    if (ParseDecimal(WordAt(words, 1), &checked) != 0) {
        printf("Failed to get Algorith ID value.\n");
        return 1;
    }
    request->Operation = static_cast<uint32_t>(operation);
    if (operation == 1) {
        request->AlgorithmId = ClaimWord(words, 3);
        request->Persist = static_cast<uint8_t>(ClaimWord(words, 5));
        request->ExpirationLimit = ClaimWord(words, 7);
        request->SerialDebug = static_cast<uint8_t>(ClaimWord(words, 9));
        request->NsJtag = static_cast<uint8_t>(ClaimWord(words, 11));
        request->HwI2c = static_cast<uint8_t>(ClaimWord(words, 13));
        request->DiagReadWrite = static_cast<uint8_t>(ClaimWord(words, 15));
        request->HwAnalysis = static_cast<uint8_t>(ClaimWord(words, 17));
        request->PcieAnalyser = static_cast<uint8_t>(ClaimWord(words, 19));
        request->FwCliAccess = ClaimWord(words, 21);
        return SendClaims(device, request, kOneLineClaimsFile, true);
    }
    if (operation == 2) {
        const char *signature = WordAt(words, 3);
        printf("Signature file : %s\n", Shown(signature));
        if (signature == nullptr) {
            printf("Signature file is NULL");
            return 1;
        }
        // A missing claims file goes unnoticed: the library gets no claims.
        LoadClaims(OpenRegularFile(kOneLineClaimsFile), request);
        PrintSummary(*request, true);
        return SendSignature(device, request, signature);
    }
    return 0;
}

}  // namespace

uint32_t GenerateDebugToken(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    ZENTREL_SWITCH_DEBUG_TOKEN_REQ request = {};
    if (words != nullptr) {
        printf("%s: ONE_LINE Mode\n", "zentrelGenerateDebugToken");
        return GenerateOneLine(device, words, &request);
    }
    return GeneratePrompted(device, &request);
}
