// Temperature as the SDK reports it, in tenths of a kelvin.
#ifndef KX_PG_TEMPERATURE_H
#define KX_PG_TEMPERATURE_H

namespace KxPGrey {

constexpr double kelvin(unsigned int tenths)
{
    return tenths / 10.0;
}

constexpr double celsius(unsigned int tenths)
{
    return kelvin(tenths) - 273.15;
}

} // namespace KxPGrey

#endif
