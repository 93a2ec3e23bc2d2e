#!/bin/sh
# The stations of the radios, for who reads /tmp/clientList.txt.
cat /router/state/wifi-clients >/tmp/clientList.txt 2>/dev/null
