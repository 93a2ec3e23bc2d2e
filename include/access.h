// What other areas use of the access area.
#pragma once

// 1 when the MAC filter is on, else 0. Succeeds with 0, or fails with 1 and `out` untouched.
int get_mac_filter_enable(int& out);
