"""What stands behind remote maintenance and the security service: --sense absent, installed or busy; --update-agent runs.

The busy agents are real processes, so that `ps` shows them as it does on a router."""

SENSE_VERSION = "/opt/sense/VERSION"
SENSE_SCRIPT = "/opt/sense/bin/sense_init.sh"
UPDATE_AGENT = "/usr/sbin/hotacron"
START = "/router/state/start-agents"
SENSE_STATES = ("absent", "installed", "busy")
LONGEST_S = 3600


def add_options(parser):
    parser.add_argument("--sense", choices=SENSE_STATES, default="installed",
                        help="the security service (brand tesmir only); busy is starting or stopping; default: installed")
    parser.add_argument("--update-agent", action="store_true", help="the maker's update agent runs")


def apply(root, args):
    if args.brand == "tesmir" and args.sense != "absent":
        root.write(SENSE_VERSION, "2.1.0\n")
    agents = [SENSE_SCRIPT] if args.sense == "busy" else []
    if args.update_agent:
        agents.append(UPDATE_AGENT)
    if agents:  # in a file: a command line of the sandbox that names them would count as one of them
        root.write(START, "".join(f"sh -c 'sleep {LONGEST_S}; :' {agent} >/dev/null 2>&1 &\n" for agent in agents))
        root.setup.append(f"sh {START}")
