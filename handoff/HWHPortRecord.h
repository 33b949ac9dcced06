// One port of a module in the connectivity metadata.
#pragma once

#include <map>
#include <string>

/// All texts are those of the metadata, unchanged; a field that it lacks is empty.
struct HWHPortRecord {
    std::string NAME;   ///< also the port's key in its map
    std::string DIR;    ///< direction
    std::string SIG_IS; ///< kind of signal, such as "CLK", "INTR" or "INTERRUPT"
    std::string IRQID;  ///< interrupt number
    std::map<std::string, std::string> CONNECTIONS; ///< far instance to far port
};
