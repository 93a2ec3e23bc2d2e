"""What the platform's tools do when a test says nothing else: those that act do it without a word, those that are asked
tell of a router on which nothing is up. A call that stands in neither list, nor in its test, fails by its name."""

from __future__ import annotations

_JWE_ENCRYPT = ["jwe", "enc", "-i", "/etc/lighttpd/jwe-protected.json", "-I-", "-p", "-c"]
_JWE_DECRYPT = ["jwe", "dec", "-i-", "-p"]

# jose answers to its two argument lists, and to nothing else.
FAKE_JOSE = {"jose": [
    {"args": _JWE_ENCRYPT, "exact": True, "answers": [{"jose": "encrypt"}]},
    {"args": _JWE_DECRYPT, "exact": True, "answers": [{"jose": "decrypt"}]},
    {"args": [], "answers": [{"exit": 1}]},
]}

# Calls that act, by their first words. A shell that finds no `wifi` or `reboot` of its own finds those of /sbin, which is
# /usr/sbin.
_SILENT = """
    /etc/init.d/dnsmasq restart
    /etc/init.d/firewall restart
    /etc/init.d/globalip start
    /etc/init.d/miniupnpd reload
    /etc/init.d/network reload
    /etc/init.d/network restart
    /etc/init.d/nwm_package start
    /etc/init.d/nwm_package stop
    /etc/init.d/repacd update_bss_config
    /etc/init.d/sysntpd restart
    /etc/init.d/sysntpd stop
    /etc/init.d/wsplcd restart_after_config_change
    /etc/qvpppoe_chk_cmd.sh
    /etc/wireClient.sh
    /opt/sense/bin/sense_init.sh start
    /opt/sense/bin/sense_init.sh stop
    /sbin/firstboot -r -y
    /sbin/reboot
    /sbin/sysupgrade --create-backup
    /sbin/sysupgrade --restore-backup
    /sbin/wifi
    /usr/sbin/IDM_from_qv/idm_start
    /usr/sbin/IDM_from_qv/idm_stop
    /usr/sbin/easymesh_agent.sh
    /usr/sbin/easymesh_close_for_agent.sh
    /usr/sbin/easymesh_close_for_controller.sh
    /usr/sbin/easymesh_controller.sh
    /usr/sbin/hotacron
    /usr/sbin/iptables_guest_isolate.sh
    /usr/sbin/ledtest
    /usr/sbin/orvanehota -c
    /usr/sbin/orvanehota -d
    /usr/sbin/orvanehota -u
    /usr/sbin/orvanehota -v
    /usr/sbin/reboot
    /usr/sbin/refreshPasswd.sh
    /usr/sbin/resetdbnum
    /usr/sbin/tesmirhota -c
    /usr/sbin/tesmirhota -d
    /usr/sbin/tesmirhota -u
    /usr/sbin/tesmirhota -v
    /usr/sbin/tesmirupg.sh
    /usr/sbin/testinfo
    /usr/sbin/wifi
    /usr/sbin/wps_web.sh
    arp -a
    arp-scan -I br-lan --quiet
    brctl showmacs br-lan
    crontab -l
    crontab /tmp/tmp_cron_list
    fact switch-key 1
    hostapd_cli -i
    ifconfig br-lan down
    ifconfig br-lan up
    ip -4 neigh flush dev br-lan
    ip -6 r s
    ip addr flush dev
    ip route
    logger
    msg_tool -r easymesh_over
    orvanehota -c
    passwd admin
    ps
    reboot
    sleep
    tesmirhota -c
    ubus call network reload
    ubus call network.interface.lan up
    wifi multi_up
    wifi reload
"""

# Calls that are asked, and what they say where nothing is up: first words, status, standard error.
_NOTHING_UP = (
    ("/etc/getIpAddr.sh", 1, ""),
    ("/usr/sbin/ip4ov6jp_info", 1, ""),
    ("ifconfig", 1, "ifconfig: error fetching interface information: Device not found\n"),
    ("ifstatus wan", 1, "Interface wan not found\n"),
    ("inetchk -46 -woi", 0, ""),
    ("iw dev", 237, "command failed: No such device (-19)\n"),
    ("wpa_cli -i", 255, "Failed to connect to non-global ctrl_iface\n"),
)


def _rule(words: str, **answer) -> tuple[str, dict]:
    tool, *args = words.split()
    return tool, {"args": args, "answers": [answer]}


def _by_tool() -> dict[str, dict]:
    rules = [_rule(line) for line in _SILENT.split("\n") if line.strip()]
    rules += [_rule(words, exit=status, err=error) for words, status, error in _NOTHING_UP]
    rules.sort(key=lambda rule: -len(rule[1]["args"]))
    tools: dict[str, dict] = {}
    for tool, rule in rules:
        tools.setdefault(tool, {"rules": []})["rules"].append(rule)
    return tools


UNLESS_TOLD = _by_tool()
