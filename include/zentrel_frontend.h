/*
 * Library session, discovery and device information.
 */
#ifndef ZENTREL_FRONTEND_H
#define ZENTREL_FRONTEND_H

#include "zentrel_types.h"

/* Filled by ZentrelGetDeviceInfo; the length 1392 is passed with every call.
 * Only the named fields are read by the utility, the rest is the library's. */
typedef struct ZENTREL_DEVICE_INFO {
    ZENTREL_DEVICE_HANDLE Handle;
    uint8_t Reserved4[20];
    uint32_t FwVersion;        /* major, minor, third, fourth; most significant byte first */
    uint32_t SmApiVersion;     /* top byte major, next byte minor */
    uint32_t DeviceGeneration; /* 2 and 3 run the newer switch commands */
    uint8_t Reserved36[4];
    uint16_t DeviceId;
    uint8_t Reserved42[1338];
    uint32_t ProductNumber;
    uint8_t Reserved1384[4];
    uint32_t ProductType;      /* ZENTREL_PRODUCT_TYPE_SWITCH for a PCIe switch */
} ZENTREL_DEVICE_INFO, *PTR_ZENTREL_DEVICE_INFO;

#define ZENTREL_DEVICE_INFO_LENGTH 1392u
#define ZENTREL_PRODUCT_TYPE_SWITCH 3u

ZENTREL_ASSERT_SIZE(ZENTREL_DEVICE_INFO, 1392);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, Handle, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, FwVersion, 24);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, SmApiVersion, 28);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, DeviceGeneration, 32);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, DeviceId, 40);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, ProductNumber, 1380);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_INFO, ProductType, 1388);

/* Device context of one-shot mode: the handle and the index as typed,
 * then the device information. The library reads the handle only. */
typedef struct ZENTREL_DEVICE_CONTEXT {
    ZENTREL_DEVICE_HANDLE Handle;
    uint32_t Index;
    ZENTREL_DEVICE_INFO Info;
} ZENTREL_DEVICE_CONTEXT;

ZENTREL_ASSERT_SIZE(ZENTREL_DEVICE_CONTEXT, 1400);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_CONTEXT, Handle, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_CONTEXT, Index, 4);
ZENTREL_ASSERT_OFFSET(ZENTREL_DEVICE_CONTEXT, Info, 8);

/* Read by ZentrelDiscoverDevices; all bytes not named are zero. */
typedef struct ZENTREL_DISCOVERY_REQ {
    uint16_t FixedWord; /* ZENTREL_DISCOVERY_FIXED_WORD */
    uint8_t FixedByte;  /* ZENTREL_DISCOVERY_FIXED_BYTE */
    uint8_t Reserved3[5];
    uint16_t SmbusNumber;
    uint8_t Reserved10[2];
    uint32_t DeviceAddress;
    uint8_t PcieBus;
    uint8_t PcieDevice;
    uint8_t PcieFunction;
    uint8_t Reserved19;
} ZENTREL_DISCOVERY_REQ, *PTR_ZENTREL_DISCOVERY_REQ;

#define ZENTREL_DISCOVERY_FIXED_WORD 0x5900u
#define ZENTREL_DISCOVERY_FIXED_BYTE 3u
#define ZENTREL_DISCOVERY_MODE_LIST 3u
#define ZENTREL_DISCOVERY_MODE_ADDRESS 4u

ZENTREL_ASSERT_SIZE(ZENTREL_DISCOVERY_REQ, 20);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, FixedWord, 0);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, FixedByte, 2);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, SmbusNumber, 8);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, DeviceAddress, 12);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, PcieBus, 16);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, PcieDevice, 17);
ZENTREL_ASSERT_OFFSET(ZENTREL_DISCOVERY_REQ, PcieFunction, 18);

ZENTREL_API ZENTREL_STATUS ZentrelInitialize(void);
ZENTREL_API ZENTREL_STATUS ZentrelExit(void);
ZENTREL_API ZENTREL_STATUS ZentrelDiscoverDevices(uint32_t Mode, PTR_ZENTREL_DISCOVERY_REQ Request);
ZENTREL_API ZENTREL_STATUS ZentrelGetDeviceCount(uint32_t *Count);
ZENTREL_API ZENTREL_STATUS ZentrelGetDeviceInfo(uint32_t Index, uint32_t Length, PTR_ZENTREL_DEVICE_INFO Info);

#endif
