// Core dump capture, information, section upload and erase.
#include <cstdio>
#include <cstring>

#include "dumps.h"
#include "frontend/helpers.h"
#include "frontend/input.h"

namespace {

constexpr uint32_t kCaptureBytes = 262144;
constexpr uint32_t kLastType = ZENTREL_COREDUMP_DECODED;
constexpr size_t kInfoResponseBytes = 456;   // room for 26 section entries
constexpr size_t kSectionResponseBytes = 56; // room for one
constexpr char kCollected[] = "Coredump data collected..";

// Serialises naming, creating and writing the capture files, and releasing
// the capture buffer, between threads capturing at once.
pthread_mutex_t gCoreDumpFileMutex = PTHREAD_MUTEX_INITIALIZER;

void PrintCaptureUsage() {
    printf("Usage: zentrelLibTest -i 0 -getcoredump [<coredumptype>]\n");
    printf("Coredump type:\n");
    printf("1-RAW Coredump\n");
    printf("2-Decoded Coredump\n");
    printf("This is optional and by default RAW coredump is uploaded.\n");
}

// Reads one "%d" answer with no prompt of its own.
uint32_t ReadAnswer() {
    uint32_t answer = 0;
    ScanDecimal(&answer);
    return answer;
}

// Section entry i of a response buffer of `size` bytes; false when the
// buffer has no room for it, whatever the library says it filled.
bool SectionAt(const uint8_t *response, size_t size, uint32_t i, ZENTREL_SWITCH_COREDUMP_SECTION *entry) {
    size_t offset = sizeof(ZENTREL_SWITCH_COREDUMP_INFO_RESP) + size_t{i} * sizeof *entry;
    if (offset + sizeof *entry > size) return false;
    memcpy(entry, response + offset, sizeof *entry);
    return true;
}

}  // namespace

uint32_t CaptureCoreDump(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    uint8_t *buffer = static_cast<uint8_t *>(AllocZeroed(kCaptureBytes));
    if (buffer == nullptr) {
        printf("Unable to allocate buffer to get core dump!!!\n\n");
        return 1;
    }
    memset(buffer, 0xFF, kCaptureBytes);
    uint16_t type = ZENTREL_COREDUMP_RAW;
    if (WantsUsage(words)) {
        PrintCaptureUsage();
        // The type is parsed from the "-h" itself, which always fails. The
        // buffer is not released on this path (kept as it always was).
        int32_t parsed = 0;
        if (ParseDecimal(words[0], &parsed) != 0) {
            printf("failed to get coredump type\n");
            return 1;
        }
        return 0;
    }
    // A word list, even an empty one, is not read: the capture is RAW.
    if (words == nullptr) {
        printf("Input the option 1-RAW Coredump, 2-Decoded Coredump :");
        type = static_cast<uint16_t>(ReadAnswer());
    }
    if (type > kLastType) {
        printf("Invalid coredump type.\n");
        FreeBuffer(buffer);
        return 1;
    }
    printf("\n\n\nUploading Coredump.. Going to take 1 to 2 minutes \n");
    uint32_t length = kCaptureBytes;
    ZENTREL_STATUS status = ZentrelGetCoreDump(device, buffer, &length, type);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Unable to get Coredump data , libStatus = 0x%x\n", status);
        FreeBuffer(buffer);
        return 1;
    }
    printf("Valid Coredump data collected\n");
    MutexGuard guard(&gCoreDumpFileMutex);
    // Any other type leaves the name empty, which no file can have.
    char name[dumps::kFileNameSize] = {};
    if (type == ZENTREL_COREDUMP_RAW)
        snprintf(name, sizeof name, "coredump_%x.txt", dumps::AddressNumber(&device));
    else if (type == ZENTREL_COREDUMP_DECODED)
        snprintf(name, sizeof name, "decoded_coredump_%x.txt", dumps::AddressNumber(&device));
    // The library never reports more than the buffer holds; a faulty one is not believed.
    dumps::SaveToFile(name, buffer, length < kCaptureBytes ? length : kCaptureBytes, kCollected);
    FreeBuffer(buffer);
    return 0;
}

uint32_t GetCoreDumpInfo(PTR_ZENTREL_DEVICE device) {
    printf("Input the type of coredump information to read.");
    printf("1-RAW Coredump, 2-Decoded Coredump:");
    uint32_t type = ReadAnswer();
    printf("Do you want to validate the coredump section?(1-Yes, 0-no):");
    uint32_t validate = ReadAnswer();
    uint32_t sectionId = 0;
    if (validate > 1) {
        printf("Invalid input on validation of section coredump.\n");
        return 1;
    }
    if (validate == 1) {
        printf("Input the section id of the coredump to validate:");
        sectionId = ReadAnswer();
    }
    if (type > kLastType) {
        printf("Invalid coredump type.\n");
        return 1;
    }
    uint32_t valid = 0, size = 0;
    ZENTREL_STATUS status = ZentrelSwitchIsCoredumpValid(device, type, &valid, &size);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get coredump information. status=0x%x\n", status);
        return 1;
    }
    if (valid != 1) {
        printf("Coredump is not valid\n");
        return 1;
    }
    printf("Requested coredump is valid and is of size:%d bytes\n", static_cast<int>(size));

    auto *request = static_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_REQ>(AllocZeroed(sizeof(ZENTREL_SWITCH_COREDUMP_INFO_REQ)));
    auto *bytes = static_cast<uint8_t *>(AllocZeroed(kInfoResponseBytes));
    if (request == nullptr || bytes == nullptr) {
        printf("Unable to allocate buffer.");
        FreeBuffer(request);
        FreeBuffer(bytes);
        return 1;
    }
    request->Flags = ZENTREL_COREDUMP_INFO_REQUESTED;
    request->CoreDumpType = type;
    request->ResponseSize = kInfoResponseBytes;
    if (validate != 0) {
        request->Flags |= ZENTREL_COREDUMP_INFO_VALIDATE_SECTION;
        request->SectionId = static_cast<uint8_t>(sectionId);
    }
    auto *response = reinterpret_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP>(bytes);
    status = ZentrelSwitchGetCoredumpInfo(device, request, response);
    uint32_t result = 0;
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get coredump information. status=0x%x\n", status);
        result = 1;
    } else {
        printf("Coredump Information:\n");
        printf("----------------------\n");
        const char *typeName = response->CoreDumpType == ZENTREL_COREDUMP_DECODED ? "Decoded"
                               : response->CoreDumpType == ZENTREL_COREDUMP_RAW   ? "RAW"
                                                                                  : "";
        printf("Coredump Type requested:%s\n", typeName);
        printf("Is requested coredump valid:%d\n", response->CoreDumpValid);
        if (response->CoreDumpValid != 0) {
            printf("Binary Coredump size:%d bytes\n", static_cast<int>(response->BinarySize));
            printf("Decoded Coredump size:%d bytes\n", static_cast<int>(response->DecodedSize));
            if (request->Flags & ZENTREL_COREDUMP_INFO_VALIDATE_SECTION) {
                printf("Requested coredump section id:%d\n", request->SectionId);
                printf("Is requested section coredump valid:%d\n", response->SectionValid);
            }
            printf("Coredump section information:\n");
            printf("--------------------------------\n");
            printf("Number of sections:%d\n", static_cast<int>(response->SectionCount));
            printf("%-5s %-10s\n", "Section Id", "Section Size(bytes)");
            ZENTREL_SWITCH_COREDUMP_SECTION entry;
            for (uint32_t i = 0; i < response->EntriesFilled && SectionAt(bytes, kInfoResponseBytes, i, &entry); ++i) {
                printf("%-10d", entry.Id);
                printf("%-10d\n", static_cast<int>(entry.Size));
            }
        }
    }
    FreeBuffer(request);
    FreeBuffer(bytes);
    return result;
}

uint32_t GetCoreDumpSection(PTR_ZENTREL_DEVICE device) {
    printf("Input the section id of the decoded coredump to upload:");
    uint32_t sectionId = ReadAnswer();
    printf("Validaing the provided section id...\n");
    auto *request = static_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_REQ>(AllocZeroed(sizeof(ZENTREL_SWITCH_COREDUMP_INFO_REQ)));
    size_t responseBytes = kSectionResponseBytes;
    auto *bytes = static_cast<uint8_t *>(AllocZeroed(responseBytes));
    if (request == nullptr || bytes == nullptr) {
        printf("Unable to allocate buffer.\n");
        FreeBuffer(request);
        FreeBuffer(bytes);
        return 1;
    }
    request->Flags = ZENTREL_COREDUMP_INFO_REQUESTED | ZENTREL_COREDUMP_INFO_VALIDATE_SECTION;
    request->CoreDumpType = ZENTREL_COREDUMP_DECODED;
    request->SectionId = static_cast<uint8_t>(sectionId);
    request->ResponseSize = static_cast<uint32_t>(responseBytes);
    ZENTREL_STATUS status = ZentrelSwitchGetCoredumpInfo(device, request, reinterpret_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP>(bytes));
    uint32_t sections = reinterpret_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP>(bytes)->SectionCount;
    if (status == ZENTREL_STATUS_SUCCESS && sections > 1) {
        // Room for every section the switch has, then ask again.
        FreeBuffer(bytes);
        uint64_t wanted = sizeof(ZENTREL_SWITCH_COREDUMP_INFO_RESP) + uint64_t{sections} * sizeof(ZENTREL_SWITCH_COREDUMP_SECTION);
        bytes = static_cast<uint8_t *>(dumps::AllocReported(wanted));
        if (bytes == nullptr) {
            printf("Unable to allocate buffer.\n");
            FreeBuffer(request);
            return 1;
        }
        responseBytes = static_cast<size_t>(wanted);
        request->ResponseSize = static_cast<uint32_t>(responseBytes);
        status = ZentrelSwitchGetCoredumpInfo(device, request, reinterpret_cast<PTR_ZENTREL_SWITCH_COREDUMP_INFO_RESP>(bytes));
    }
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to get coredump information. status=0x%x\n", status);
        FreeBuffer(request);
        FreeBuffer(bytes);
        return 1;
    }
    ZENTREL_SWITCH_COREDUMP_INFO_RESP header;
    memcpy(&header, bytes, sizeof header);
    uint32_t sectionSize = 0;
    // A core dump that is not valid is asked for with an empty buffer.
    if (header.CoreDumpValid != 0) {
        if (header.SectionValid == 0) {
            printf("Requested section id:%d is invalid\n", static_cast<int>(sectionId));
            FreeBuffer(request);
            FreeBuffer(bytes);
            return 1;
        }
        ZENTREL_SWITCH_COREDUMP_SECTION entry;
        for (uint32_t i = 0; i < header.EntriesFilled && SectionAt(bytes, responseBytes, i, &entry); ++i) {
            if (entry.Id == sectionId) {
                sectionSize = entry.Size;
                break;
            }
        }
        printf("Requested section id:%d is valid and is of size:%d bytes\n", static_cast<int>(sectionId),
               static_cast<int>(sectionSize));
    }
    FreeBuffer(request);
    FreeBuffer(bytes);

    char name[dumps::kFileNameSize];
    snprintf(name, sizeof name, "coredump_0x%x_section_%d.txt", dumps::AddressNumber(&device), static_cast<int>(sectionId));
    uint8_t *buffer = static_cast<uint8_t *>(dumps::AllocReported(sectionSize));
    if (buffer == nullptr) {
        printf("Unable to allocate buffer to get core dump!!!\n\n");
        return 1;
    }
    memset(buffer, 0xFF, sectionSize);
    printf("\n\n\nUploading decoded coredump with section id:%d...\n", static_cast<int>(sectionId));
    uint32_t length = sectionSize;
    status = ZentrelSwitchGetDecodedCoreDumpBySection(device, buffer, &length, static_cast<uint8_t>(sectionId));
    if (status != ZENTREL_STATUS_SUCCESS) {
        // The message has one number for the section and one for the
        // status, but only the status was ever given: it shows as the
        // section, and the status slot shows it once more.
        printf("Unable to upload the section:%d of the decoded coredump data , libStatus = 0x%x\n",
               static_cast<int>(status), status);
        FreeBuffer(buffer);
        return 1;
    }
    printf("Valid Coredump data collected\n");
    dumps::SaveToFile(name, buffer, length < sectionSize ? length : sectionSize, kCollected);
    FreeBuffer(buffer);
    return 0;
}

uint32_t EraseCoreDump(PTR_ZENTREL_DEVICE device, const char *const *words, PTR_ZENTREL_DEVICE_INFO) {
    if (WantsUsage(words)) {
        printf("Usage: zentrelLibTest -i 0 -erasecoredump\n");
        return 1;
    }
    ZENTREL_STATUS status = ZentrelEraseCoreDump(device);
    if (status != ZENTREL_STATUS_SUCCESS) {
        printf("Failed to erase core dump buffer, status %x\n", status);
        return 1;
    }
    printf("Coredump erased successfully\n");
    return kContinue;
}
