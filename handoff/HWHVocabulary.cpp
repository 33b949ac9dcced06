#include "handoff/HWHVocabulary.h"

namespace hwh::key {

// any element
const std::string kName = "@NAME";
const std::string kValue = "@VALUE";
const std::string kInstance = "@INSTANCE";
const std::string kPort = "@PORT";
const std::string kType = "@TYPE";

// the root
const std::string kOrvenaversion = "@ORVENAVERSION";
const std::string kGuvversion = "@GUVVERSION";
const std::string kTimestamp = "@TIMESTAMP";
const std::string kChangedby = "@CHANGEDBY";

// the system's facts
const std::string kArch = "@ARCH";
const std::string kDevice = "@DEVICE";
const std::string kPackage = "@PACKAGE";
const std::string kSpeedgrade = "@SPEEDGRADE";

// modules
const std::string kFullname = "@FULLNAME";
const std::string kHwversion = "@HWVERSION";
const std::string kIptype = "@IPTYPE";
const std::string kModtype = "@MODTYPE";
const std::string kModclass = "@MODCLASS";
const std::string kIsPl = "@IS_PL";
const std::string kSlrNumber = "@SLR_NUMBER";
const std::string kMultisocketsmp = "@MULTISOCKETSMP";
const std::string kIsEnable = "@IS_ENABLE";
const std::string kProctype = "@PROCTYPE";
const std::string kCorerevision = "@COREREVISION";
const std::string kVlnv = "@VLNV";
const std::string kConfigurable = "@CONFIGURABLE";
const std::string kIspdefinst = "@ISPDEFINST";

// ports
const std::string kDir = "@DIR";
const std::string kSigis = "@SIGIS";
const std::string kLeft = "@LEFT";
const std::string kRight = "@RIGHT";
const std::string kClkfrequency = "@CLKFREQUENCY";
const std::string kSensitivity = "@SENSITIVITY";
const std::string kIrqid = "@IRQID";
const std::string kPolarity = "@POLARITY";
const std::string kSigname = "@SIGNAME";
const std::string kMsb = "@MSB";
const std::string kLsb = "@LSB";
const std::string kEndian = "@ENDIAN";

// memory ranges
const std::string kIsData = "@IS_DATA";
const std::string kIsInstruction = "@IS_INSTRUCTION";
const std::string kBasename = "@BASENAME";
const std::string kBasevalue = "@BASEVALUE";
const std::string kBasedecimal = "@BASEDECIMAL";
const std::string kHighname = "@HIGHNAME";
const std::string kHighvalue = "@HIGHVALUE";
const std::string kHighdecimal = "@HIGHDECIMAL";
const std::string kMemtype = "@MEMTYPE";
const std::string kAccesstype = "@ACCESSTYPE";
const std::string kAtrustzone = "@ATRUSTZONE";
const std::string kAddressblock = "@ADDRESSBLOCK";
const std::string kSlavebusinterface = "@SLAVEBUSINTERFACE";
const std::string kMasterbusinterface = "@MASTERBUSINTERFACE";

// bus interfaces
const std::string kBusname = "@BUSNAME";
const std::string kProtocol = "@PROTOCOL";
const std::string kDatawidth = "@DATAWIDTH";
const std::string kPhysical = "@PHYSICAL";
const std::string kLogical = "@LOGICAL";

} // namespace hwh::key
