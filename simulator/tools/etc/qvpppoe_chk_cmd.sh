#!/bin/sh
# Is a PPPoE server on the line? The verdict is 1 for yes and 0 for no; without a cable there is none.
. /router/simulated/lib/wan.sh
result=/tmp/pppoechkresult.txt
rm -f "$result"
wan_has_carrier || exit 1
if [ "$wan_line" = pppoe ]; then echo 1; else echo 0; fi >"$result"
