"""Memory that ends in the middle of a request ends the request, and nothing else."""

import pytest

from torture import answers
from torture.faults import FROM_THEN_ON, KINDS, FaultyUnit, ended_by_libfcgi


@pytest.mark.parametrize("route", ["ntp", "port-open"])  # one ends with its answer, one starts work behind it
def test_a_request_that_runs_out_of_memory_is_answered_once_and_the_program_goes_on(route):
    faulty, told = FaultyUnit(route), 0
    try:
        most = faulty.counts["memory"]
        for at in range(1, most, max(1, most // 25)):
            faulty.control.arm(KINDS.index("memory"), at, FROM_THEN_ON)
            answer = faulty.unit.send(faulty.body)
            faulty.control.disarm()
            assert faulty.unit.router.alive() or ended_by_libfcgi(faulty.unit.router), faulty.unit.router.report()
            assert answer.empty or answers.complaint("POST", route, answer) is None, answer.body
            told += answer.text == '{"result": 1}'
            faulty.again(fresh=not faulty.unit.router.alive())
        assert told > 0
        faulty.unit.finish()
    finally:
        faulty.unit.router.discard()
