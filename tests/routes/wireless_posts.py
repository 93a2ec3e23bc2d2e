"""How the tests post wireless settings, and how they see a request end."""

from routes.wireless_state import ISOLATE, SETTING, request, wait

COMMITS = ["uci commit wireless", "uci commit wireless_for_easymesh"]
OK_70 = (wait(70), [*COMMITS, "wifi reload", ISOLATE])
RESULT_1 = '{"result": 1}'
RESULT_2 = '{"result": 2}'


def post(router, *elements, **members):
    router.forget_calls()
    return router.post(SETTING, request(*elements, **members))


def ends(router, answer, text, commands=()):
    """The answer is this one, and these commands ran; those in the background may come in another order."""
    assert answer.encrypted and answer.text == text, (answer, router.report())
    assert answer.header_lines == ["Content-Type: application/json", "Status: 200 OK"]
    for command in commands:
        router.wait_for_call(*command.split())
    assert sorted(router.commands()) == sorted(commands)
    assert in_order(router.commands()) == in_order(commands)


def in_order(commands):
    """Those that are waited for, or that wait for each other."""
    return [command for command in commands if command.startswith(("uci ", "/etc/init.d/", "sleep "))]
