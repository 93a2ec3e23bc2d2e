#!/bin/sh
# Is a PPPoE server on the line? 1: one answered.
echo 1 >/tmp/pppoechkresult.txt
