// The names of the handoff format, each spelt once. Words that the generator doesn't write yet
// belong to the format all the same.
#pragma once

#include <string>

/// Attribute keys, as the text form of the XML writer takes them.
namespace hwh::key {

// any element
extern const std::string kName;
extern const std::string kValue;
extern const std::string kInstance;
extern const std::string kPort;
extern const std::string kType;

// the root
extern const std::string kOrvenaversion;
extern const std::string kGuvversion;
extern const std::string kTimestamp;
extern const std::string kChangedby;

// the system's facts
extern const std::string kArch;
extern const std::string kDevice;
extern const std::string kPackage;
extern const std::string kSpeedgrade;

// modules
extern const std::string kFullname;
extern const std::string kHwversion;
extern const std::string kIptype;
extern const std::string kModtype;
extern const std::string kModclass;
extern const std::string kIsPl;
extern const std::string kSlrNumber;
extern const std::string kMultisocketsmp;
extern const std::string kIsEnable;
extern const std::string kProctype;
extern const std::string kCorerevision;
extern const std::string kVlnv;
extern const std::string kConfigurable;
extern const std::string kIspdefinst;

// ports
extern const std::string kDir;
extern const std::string kSigis;
extern const std::string kLeft;
extern const std::string kRight;
extern const std::string kClkfrequency;
extern const std::string kSensitivity;
extern const std::string kIrqid;
extern const std::string kPolarity;
extern const std::string kSigname;
extern const std::string kMsb;
extern const std::string kLsb;
extern const std::string kEndian;

// memory ranges
extern const std::string kIsData;
extern const std::string kIsInstruction;
extern const std::string kBasename;
extern const std::string kBasevalue;
extern const std::string kBasedecimal;
extern const std::string kHighname;
extern const std::string kHighvalue;
extern const std::string kHighdecimal;
extern const std::string kMemtype;
extern const std::string kAccesstype;
extern const std::string kAtrustzone;
extern const std::string kAddressblock;
extern const std::string kSlavebusinterface;
extern const std::string kMasterbusinterface;

// bus interfaces
extern const std::string kBusname;
extern const std::string kProtocol;
extern const std::string kDatawidth;
extern const std::string kPhysical;
extern const std::string kLogical;

} // namespace hwh::key

/// Element names.
namespace hwh::element {

inline constexpr const char* kLomSystem = "LOMSYSTEM";
inline constexpr const char* kStstemInfo = "STSTEMINFO";
inline constexpr const char* kExternalPorts = "EXTERNALPORTS";
inline constexpr const char* kExternalInterfaces = "EXTERNALINTERFACES";
inline constexpr const char* kModules = "MODULES";
inline constexpr const char* kModule = "MODULE";
inline constexpr const char* kParameters = "PARAMETERS";
inline constexpr const char* kParameter = "PARAMETER";
inline constexpr const char* kPorts = "PORTS";
inline constexpr const char* kPort = "PORT";
inline constexpr const char* kConnections = "CONNECTIONS";
inline constexpr const char* kConnection = "CONNECTION";
inline constexpr const char* kMemoryMap = "MEMORYMAP";
inline constexpr const char* kMemRange = "MEMRANGE";
inline constexpr const char* kPeripherals = "PERIPHERALS";
inline constexpr const char* kPeripheral = "PERIPHERAL";
inline constexpr const char* kSignals = "SIGNALS";
inline constexpr const char* kSignal = "SIGNAL";
inline constexpr const char* kBusInterfaces = "BUSINTERFACES";
inline constexpr const char* kBusInterface = "BUSINTERFACE";
inline constexpr const char* kPortMaps = "PORTMAPS";
inline constexpr const char* kPortMap = "PORTMAP";

} // namespace hwh::element

/// Value words.
namespace hwh::word {

inline constexpr const char* kEmpty = "__EMPTY__";
inline constexpr const char* kTrue = "TRUE";
inline constexpr const char* kFalse = "FALSE";
inline constexpr const char* kUser = "USER";
inline constexpr const char* kSlave = "SLAVE";
inline constexpr const char* kMaster = "MASTER";
inline constexpr const char* kMonitor = "MONITOR";
inline constexpr const char* kTarget = "TARGET";
inline constexpr const char* kInitiator = "INITIATOR";
inline constexpr const char* kMasterSlave = "MASTER_SLAVE";

inline constexpr const char* kBaseAddressName = "C_BASEADDR";
inline constexpr const char* kHighAddressName = "C_HIGHADDR";
inline constexpr const char* kHardwareVersion = "11.0";
inline constexpr const char* kEnabled = "1";
inline constexpr const char* kUndefinedSignal = "undef";
inline constexpr const char* kGuvVersion = "1.2";

} // namespace hwh::word

/// Field names, without the mark of an attribute.
namespace hwh::field {

inline constexpr const char* kValue = "VALUE";
inline constexpr const char* kBasevalue = "BASEVALUE";
inline constexpr const char* kHighvalue = "HIGHVALUE";
inline constexpr const char* kBasename = "BASENAME";
inline constexpr const char* kHighname = "HIGHNAME";
inline constexpr const char* kSigis = "SIGIS";
inline constexpr const char* kClkfrequency = "CLKFREQUENCY";
inline constexpr const char* kSensitivity = "SENSITIVITY";
inline constexpr const char* kAccesstype = "ACCESSTYPE";
inline constexpr const char* kTrustzone = "TRUSTZONE";
inline constexpr const char* kAddressblock = "ADDRESSBLOCK";

} // namespace hwh::field

/// Scalar properties of an instance in the connectivity metadata, and what they are tested for.
namespace hwh::scalar {

inline constexpr const char* kRole = "isMasterOrSlave";
inline constexpr const char* kRoleMaster = "master";
inline constexpr const char* kRoleSlave = "slave";
inline constexpr const char* kSdkName = "SDKNAME";
inline constexpr const char* kEnableParam = "ENPARAM";
inline constexpr const char* kMetaParam = "METAPARAM";
inline constexpr const char* kClassification = "CLASSIFICATION";
inline constexpr const char* kClassInterface = "INTERFACE";
inline constexpr const char* kIpType = "IP_TYPE";
inline constexpr const char* kModType = "MODTYPE";
inline constexpr const char* kModClass = "MODCLASS";
inline constexpr const char* kMultiSocketSmp = "MULTISOCKETSMP";
inline constexpr const char* kSlrNumber = "SLR_NUMBER";
inline constexpr const char* kBaseAddress = "BASE_ADDR";
inline constexpr const char* kHighAddress = "HIGH_ADDR";
inline constexpr const char* kMemType = "MEMTYPE";
inline constexpr const char* kIsData = "IS_DATA";
inline constexpr const char* kIsInstruction = "IS_INSTRUCTION";

} // namespace hwh::scalar

/// Further members of the connectivity metadata.
namespace hwh::member {

inline constexpr const char* kPorts = "PORTS";
inline constexpr const char* kParameters = "PARAMETERS";
inline constexpr const char* kExcludedSlaves = "excluded_slaves";
inline constexpr const char* kExcludedInterfaces = "EXCLUDED_INTERFACES";
inline constexpr const char* kName = "NAME";
inline constexpr const char* kDirection = "DIR";
inline constexpr const char* kSignalKind = "SIG_IS";
inline constexpr const char* kInterruptId = "IRQID";
inline constexpr const char* kConnections = "CONNECTIONS";
inline constexpr const char* kInstance = "INSTANCE";
inline constexpr const char* kPort = "PORT";

} // namespace hwh::member

/// Kinds of signal that are treated differently, exactly as spelt.
namespace hwh::signal {

inline constexpr const char* kClock = "CLK";
inline constexpr const char* kIntr = "INTR";
inline constexpr const char* kInterrupt = "INTERRUPT";

} // namespace hwh::signal

/// The system's facts.
namespace hwh::fact {

inline constexpr const char* kFamily = "family";
inline constexpr const char* kDevice = "device";
inline constexpr const char* kPackage = "package";
inline constexpr const char* kSpeedGrade = "speedgrade";
inline constexpr const char* kCoreName = "ps_core_name";
inline constexpr const char* kCellName = "cell_name";

} // namespace hwh::fact
