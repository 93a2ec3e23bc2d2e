"""How a repeater's upstream is: --uplink good takes who knows its key, wrong-key takes nobody, lost is out of range.

/router/state/uplink holds it; what is written there while the router runs counts from then on."""

import os

STATES = ("good", "wrong-key", "lost")


def add_options(parser):
    parser.add_argument("--uplink", choices=STATES, default="good", help="a repeater's upstream network; default: good")
    parser.add_argument("--fast-time", metavar="LIBRARY", help="for tests: a library with which the program's waits pass at once")


def apply(root, args):
    root.write("/router/state/uplink", args.uplink + "\n")
    if args.mode == "re":  # joined on 5 GHz, as simulator/variants.py configures it
        root.write("/sys/class/net/ath13/address", "00:90:fe:12:34:13\n")
    if args.fast_time:
        root.mount(os.path.abspath(args.fast_time), "/router/fast_time.so")
        # A sanitizer, where one is built in, would like to be the first library.
        root.setup.append("export ASAN_OPTIONS=verify_asan_link_order=0 LD_PRELOAD=/router/fast_time.so")
