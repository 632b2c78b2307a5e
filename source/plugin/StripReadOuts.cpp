// SPDX-License-Identifier: GPL-3.0-or-later
#include "plugin/StripReadOuts.h"

#include "plugin/KVLProcessor.h"

namespace tarvik
{

// Drawn at random for this interface.
const Steinberg::FUID IStripReadOuts::iid (0x5F1C2A93, 0x8E0B4D67, 0xA4D19B3C, 0x2E7705F8);

float PLUGIN_API StripReadOuts::getGainReductionDb() { return processor.currentSnapshot().gainReductionDb; }

Steinberg::tresult PLUGIN_API StripReadOuts::queryInterface (const Steinberg::TUID interfaceID, void** object)
{
    const auto isOurs = Steinberg::FUnknownPrivate::iidEqual (interfaceID, IStripReadOuts::iid);
    *object = isOurs ? static_cast<IStripReadOuts*> (this) : nullptr;
    return isOurs ? Steinberg::kResultOk : Steinberg::kNoInterface;
}

} // namespace tarvik
