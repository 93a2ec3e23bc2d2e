"""GET /api/v1/mesh/agent-info."""

import pytest

from kit import HOSTILE
from mesh_setup import agent, controller, render, set_dump, set_leases, set_mesh

URI = "/api/v1/mesh/agent-info"
MODEL = "MX-9P300KLD"


def chain(count):
    devices = [controller()]
    for number in range(1, count):
        devices.append(agent(number, devices[-1]))
    return devices


def prepare(router, devices):
    set_mesh(router, 1)
    set_dump(router, devices)
    set_leases(router)


def test_an_agent_has_all_its_keys_in_order(router):
    devices = chain(2)
    prepare(router, devices)
    set_leases(router, (devices[1].mac, devices[1].ip, "living-room"))
    a = router.get(URI)
    assert a.encrypted
    assert list(a.json) == ["result", "version", "agentInfo"]
    assert (a.json["result"], a.json["version"]) == (0, 1)
    assert a.json["agentInfo"] == [{
        "agentDeviceNumber": 1, "model": "living-room", "macAddress": devices[1].mac, "ipv4Address": devices[1].ip,
        "connectParentMacAddress": devices[0].mac, "location": 9, "locationCustom": "", "connectionType": 5,
        "linkQuality": 100, "ledStatus": 1}]
    assert list(a.json["agentInfo"][0]) == ["agentDeviceNumber", "model", "macAddress", "ipv4Address",
                                            "connectParentMacAddress", "location", "locationCustom", "connectionType",
                                            "linkQuality", "ledStatus"]


def test_a_controller_with_no_agents_lists_none(router):
    prepare(router, [controller()])
    a = router.get(URI)
    assert a.encrypted and a.text == '{ "result": 0, "version": 1, "agentInfo": [ ] }'


def test_a_lease_with_the_mac_in_another_case_names_the_agent(router):
    devices = chain(2)
    prepare(router, devices)
    set_leases(router, (devices[1].mac.lower(), "1.1.1.1", "lower"), (devices[1].mac, "1.1.1.1", "second"))
    assert router.get(URI).json["agentInfo"][0]["model"] == "lower"


def test_an_agent_without_a_lease_has_the_products_model(router):
    devices = chain(2)
    prepare(router, devices)
    assert router.get(URI).json["agentInfo"][0]["model"] == MODEL
    assert router.logged(f"Hostname not found for MAC {devices[1].mac}, set to {MODEL}", priority=3, by="get_agent_model_info")


def test_an_agent_two_hops_away_names_the_agent_between(router):
    devices = chain(3)
    prepare(router, devices)
    agents = router.get(URI).json["agentInfo"]
    assert [row["connectParentMacAddress"] for row in agents] == [devices[0].mac, devices[1].mac]
    assert [row["agentDeviceNumber"] for row in agents] == [1, 2]


def test_of_twenty_devices_fifteen_are_listed(router):
    prepare(router, chain(20))
    assert [row["agentDeviceNumber"] for row in router.get(URI).json["agentInfo"]] == list(range(1, 16))


@pytest.mark.parametrize("backhaul, code", [(("ETHER",), 0), (("WLAN2G",), 1), (("WLAN5G",), 2), (("WLAN6G",), 3),
                                            (("WLAN2G", "WLAN5G"), 4), (("WLAN5G", "WLAN6G"), 5),
                                            (("WLAN2G", "WLAN5G", "WLAN6G"), 6)])
def test_the_backhaul_has_its_code(router, backhaul, code):
    root = controller()
    prepare(router, [root, agent(1, root, backhaul=backhaul)])
    assert router.get(URI).json["agentInfo"][0]["connectionType"] == code


@pytest.mark.parametrize("enable, role", [(0, "controller"), (1, "agent"), (1, "other")])
def test_a_router_that_is_no_controller_lists_none_and_asks_nobody(router, enable, role):
    set_mesh(router, enable, role)
    assert router.get(URI).text == '{ "result": 0, "version": 1, "agentInfo": [ ] }'
    assert router.calls("emt") == []


@pytest.mark.parametrize("op_mode, commands, sleeps", [
    ("router", "td s2\n", ["sleep 3"]), ("ap", "td s2\n", ["sleep 5", "sleep 5"]), ("re", "td s\n", ["sleep 1"])])
def test_the_daemon_is_asked_as_the_mode_wants(router, op_mode, commands, sleeps):
    prepare(router, chain(2))
    router.set("system.@system[0].op_mode", op_mode)
    assert router.get(URI).json["result"] == 0
    assert [call.stdin for call in router.calls("emt")] == [commands]
    assert router.commands("sleep") == sleeps


def failures():
    def no_role(router):
        router.remove("/etc/config/button_mesh")

    def no_daemon(router):
        router.tool("emt", missing=True)

    def silent_daemon(router):
        router.tool("emt", out="")

    def no_mode(router):
        router.set("system.@system[0].op_mode", None)

    def no_host_name(router):
        router.set("system.@system[0].hostname", None)

    def no_leases(router):
        router.remove("/tmp/dhcp.leases")

    def no_role_option(router):
        router.set("button_mesh.easymesh.role", None)

    def no_device(router):
        router.tool("emt", out="emt: cannot connect to the mesh daemon\n")

    def no_daemon_and_no_output(router):
        router.tool("emt", exit=1)

    return [(no_role, "Failed to get mesh role"), (no_role, "Failed to get meshRole option"),
            (no_role_option, "Failed to get meshRole option"), (no_daemon_and_no_output, "Failed to get topology data"),
            (no_host_name, "Failed to get hostname"), (no_daemon, "Failed to get topology data"),
            (silent_daemon, "Failed to get topology data"), (no_device, "Failed to convert topology to agents"), (no_mode, "Failed to get topology data"),
            (no_host_name, "Failed to get agent model info"), (no_leases, "Failed to get agent model info")]


@pytest.mark.parametrize("break_it, message", failures(), ids=lambda value: getattr(value, "__name__", ""))
def test_a_failure_is_a_plain_result_1(router, break_it, message):
    prepare(router, chain(2))
    break_it(router)
    a = router.get(URI)
    assert not a.encrypted and a.body == b'{"result": 1}'
    assert router.logged(message, priority=3)


def test_without_leases_the_missing_file_is_told(router):
    prepare(router, chain(2))
    router.remove("/tmp/dhcp.leases")
    router.get(URI)
    assert "Failed to open file" in router.stderr()  # its standard output goes the same way


def test_a_controller_with_no_agents_needs_no_leases(router):
    prepare(router, [controller()])
    router.remove("/tmp/dhcp.leases")
    assert router.get(URI).json["agentInfo"] == []


def test_a_lease_names_at_most_63_bytes_and_needs_two_fields(router):
    devices = chain(2)
    prepare(router, devices)
    router.write("/tmp/dhcp.leases", f"\n1 {devices[1].mac}\n1 {devices[1].mac} 1.1.1.1\n1 {devices[1].mac} 1.1.1.1 {'n' * 70} *\n")
    assert router.get(URI).json["agentInfo"][0]["model"] == "n" * 63


def test_a_leases_name_is_cut_at_a_characters_end(router):
    devices = chain(2)
    prepare(router, devices)
    set_leases(router, (devices[1].mac, "1.1.1.1", "é" * 40))
    assert router.get(URI).json["agentInfo"][0]["model"] == "é" * 31


@pytest.mark.parametrize("mode, code", [("0", 2), ("1", 4), ("2", 5), ("3", 5), (None, 5)])
def test_a_backhaul_that_the_dump_does_not_tell_is_the_mesh_modes(router, mode, code):
    root = controller()
    prepare(router, [root, agent(1, root, backhaul=())])
    router.set("button_mesh.easymesh.mode", mode)
    assert router.get(URI).json["agentInfo"][0]["connectionType"] == code


def test_a_dead_arp_tool_leaves_out_an_agent_without_an_address(router):
    root = controller()
    prepare(router, [root])
    router.tool("emt", out=render([root, agent(1, root)]).replace(", IPv4 address: 192.168.0.11 ,", ","))
    router.tool("arp", missing=True)
    assert router.get(URI).json["agentInfo"] == []


@pytest.mark.parametrize("text", [text for text in HOSTILE.values() if text.split()], ids=[key for key, text in HOSTILE.items() if text.split()])
def test_a_hostile_host_name_is_a_name(router, text):
    devices = chain(2)
    prepare(router, devices)
    name = text.encode("utf-8", "surrogateescape").split()[0][:63]
    router.write("/tmp/dhcp.leases", b"1 %s 1.1.1.1 %s *\n" % (devices[1].mac.encode(), name))
    a = router.get(URI)
    assert a.json["result"] == 0
    try:
        assert a.json["agentInfo"][0]["model"] == name.decode()
    except UnicodeDecodeError:
        pass  # what is no text has no name in JSON; the answer is one all the same
    router.assert_nothing_ran()


def test_an_agent_without_an_address_in_its_header_is_looked_up_by_arp(router):
    set_mesh(router, 1)
    set_leases(router)
    root = controller()
    dump = render([root, agent(1, root)]).replace(", IPv4 address: 192.168.0.11 ,", ",")
    router.tool("emt", out=dump)
    router.tool("arp", "-a", out="? (192.168.0.77) at 02:00:00:a1:00:20 [ether] on br-lan\n")
    assert router.get(URI).json["agentInfo"][0]["ipv4Address"] == "192.168.0.77"


def test_the_answer_is_kept_in_the_topology_log(router):
    prepare(router, [controller()])
    router.get(URI)
    assert "handle_get_mesh_agent_info = {" in router.read("/tmp/topology.log")


@pytest.mark.parametrize("text", HOSTILE.values(), ids=HOSTILE.keys())
def test_hostile_text_in_the_dump_does_nothing(router, text):
    set_mesh(router, 1)
    set_leases(router)
    data = f"QCA IEEE 1905.1 device: {text[:17]}, IPv4 address: {text}\nUpstream Device: None\nLegacy Devices:\n" \
           f"Interface {text}:\n{text}:{text}\nIEEE 1905.1 device: {text[:17]}, MAP Agent\n"
    router.tool("emt", out=data.encode("utf-8", "surrogateescape"))
    assert router.get(URI).json["result"] in (0, 1)  # 1 where the text leaves no device to list
    router.assert_nothing_ran()
