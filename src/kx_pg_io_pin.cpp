// The record of one GPIO pin: copied field by field, as the other thread may look at it.
#include "kx_pg_io_pin.h"

#include "kx_pg_shared.h"

namespace KxPGrey {

namespace {

template <typename T>
void copyField(T& to, T& from)
{
    shared::set(to, shared::get(from));
}

} // namespace

void copyIoPin(IoPinState& to, IoPinState& from)
{
    copyField(to.expoAtCfgUs, from.expoAtCfgUs);
    copyField(to.param0, from.param0);
    copyField(to.param1, from.param1);
    copyField(to.dataWord, from.dataWord);
    copyField(to.loopsLeft, from.loopsLeft);
    copyField(to.pulseCount, from.pulseCount);
    copyField(to.idleCount, from.idleCount);
    copyField(to.activeCount, from.activeCount);
    copyField(to.bitCount, from.bitCount);
    copyField(to.bitCountCfg, from.bitCountCfg);
    copyField(to.pinIndex, from.pinIndex);
    copyField(to.mode, from.mode);
    copyField(to.src, from.src);
    copyField(to.inv, from.inv);
    copyField(to.idleLevel, from.idleLevel);
    copyField(to.lastLevel, from.lastLevel);
    copyField(to.rxWaitInit, from.rxWaitInit);
    copyField(to.cfgDirty, from.cfgDirty);
    shared::handOver(to.pinFree, shared::get(from.pinFree));
}

} // namespace KxPGrey
