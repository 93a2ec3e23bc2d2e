// Band steering: one name on all bands, whose own settings are kept for later.
#pragma once

// 1 when band steering (lbd.config.Enable) is on, else 0. 0, or 1 with `out` untouched.
int get_bandSteering_Value(int& out);

// Band steering on (1) or off (0): the 5 and 6 GHz main SSIDs follow the 2.4 GHz one, or get their own back. Where
// their own cannot be kept nothing is overwritten. 0, or 1 (logged).
int set_band_steering_Info(int enable);
