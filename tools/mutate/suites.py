"""What is mutated, and by which tests it is held."""

import re
from dataclasses import dataclass
from typing import Callable

from trial import Test


@dataclass(frozen=True)
class Suite:
    sources: tuple[str, ...]
    excluded: tuple[str, ...]
    tests: tuple[Test, ...]
    shared: tuple[str, ...]  # libraries that tests load
    stages: Callable
    helpers: tuple[str, ...] = ()  # programs that scripts use


# Tests that instantiate the engine's templates themselves. Others call operations; they include the
# engine's headers for the layout of records and modules.
CALLS_THE_ENGINE = re.compile(
    r"/(global_stp_test|schema_test|reader_report_test|shapes_test|store_plan_test|bounded_memory_test"
    r"|binding_test|bound_module_test)\.|/differential\.dir/(reading|writing|subjects)\.")


def engine_stages(affected, is_layout):
    """Proofs; the small services, whose code is the same templates; tests' own templates; the large
    service, and what instantiates templates for all messages. All objects must agree on a layout."""
    library = [name for name in affected if name.startswith("CMakeFiles/mesh_l2vpn_objects.dir/")]
    # The smallest first: most changes that do not compile fail there.
    library.sort(key=lambda name: [part in name for part in ("host/", "wire/", "l2vpn_stat/", "l2vpn_cfg/")],
                 reverse=True)
    proofs = [name for name in library if "proof" in name]
    small = [name for name in library if "proof" not in name and "l2vpn_sync/" not in name]
    large = [name for name in library if "proof" not in name and "l2vpn_sync/" in name]
    tests = [name for name in affected if name not in library]
    calling = [name for name in tests if CALLS_THE_ENGINE.search(name)]
    large += [name for name in calling if "differential" in name]
    calling = [name for name in calling if "differential" not in name]
    if is_layout:
        return [proofs, [*small, *tests, *(name for name in large if name in library)]]
    return [proofs, small, calling, large]


def at_once(affected, _):
    return [[name for name in affected if not name.startswith("tests/")]]


def reader_stages(affected, _):
    """The mutated folders; then what else the library has of them."""
    library = [name for name in affected if name.startswith("inspect/")]
    own = [name for name in library if re.search(r"\.dir/(bytes|reader|messages|json)/", name)]
    return [own, [name for name in library if name not in own]]


# Of inspect_test: what takes milliseconds, so that a mutant that never ends is found soon.
BRIEF_TESTS = "Base64*:Hex.*:HexText.Re*Dumps*:HexText.A*:Input*:Interruption*:Text.*:Identification*:RawTable*" \
    ":Messages*:RecordJson.R*:RecordJson.E*:RecordJson.I*:ReaderTexts*:TableReader*"


LONG_TESTS = "Capture.ChangedByteChangesOneTable:Capture.ReadsTruncatedFiles:SchemaDocument.SurvivesDamage" \
    ":Of/RoundTrip.ThroughJson/l2vpn_cfg_query_dfx_*:HexText.R*Stars:HexText.ReadsL*:HtmlPage.L*"


SUITES = {
    "engine": Suite(
        sources=("host/*.[ch]pp", "wire/*.[ch]pp", "msg/*.[ch]pp"),
        excluded=("proof.cpp", "proof.hpp"),
        tests=(
            Test("wire_test"),
            Test("msg_test"),
            Test("agreement_test", environment=(("MESH_TEST_ROUNDS", "0.02"),)),
            Test("services_test"),
            Test("golden_test"),
            Test("descriptors_test", own_processes=True),
            Test("bounded_memory_test"),
            Test("refusing_memory_test"),
            Test("without_MemcpyS_test"),
            Test("without_MemsetS_test"),
            Test("without_MemcpySOptAsm_test"),
            Test("first_use_test"),
            Test("reentry_test", own_processes=True),
            Test("host_test", own_processes=True),
            Test("differential", ("--executions", "500000")),
            Test("exhaustive_test"),
            Test("exercise", ("read-only", "3")),
            Test("probed", ("docs/observing.md",),
                 script="tests/delivered/shared_object/probes.sh"),
        ),
        shared=("mesh_l2vpn",),
        stages=engine_stages),
    "osal": Suite(
        sources=("platform/workstation/osal/*.[ch]pp",),
        excluded=(),
        tests=(Test("platform_test", own_processes=True, filter="Log*:Memory*"),),
        shared=("ddmosal",),
        stages=at_once),
    "configuration": Suite(
        sources=("platform/workstation/zarnimesh/configuration/*.[ch]pp",),
        excluded=("make_keys.cpp",),
        tests=(Test("platform_test", own_processes=True,
                    filter="Endpoint*:AddressBook*:Keys*:RuntimeDirectory*:Tcp*"),),
        shared=("zarnimesh",),
        stages=at_once),
    "middleware": Suite(
        sources=tuple(f"platform/workstation/zarnimesh/{folder}/*.[ch]pp"
                      for folder in ("api", "node", "peers", "transport")),
        excluded=(),
        tests=(
            # One opens 1,500 connections, which take more memory than a trial may.
            Test("platform_test", own_processes=True,
                 filter="*-Log*:Memory*:EndlessMessage*:Node.RemembersAllLiveSenders"),
            # A mutant that takes endless messages takes gigabytes.
            Test("platform_test", own_processes=True, filter="EndlessMessage*", is_slow=True),
            Test("platform_scenarios", ("--scenarios", "8", "--over", "ipc")),
            Test("platform_scenarios", ("--scenarios", "30", "--over", "inproc")),
        ),
        shared=("zarnimesh",),
        stages=at_once),
    "reader": Suite(
        sources=tuple(f"inspect/{folder}/*.[ch]pp"
                      for folder in ("bytes", "reader", "messages", "json")),
        excluded=(),
        tests=(
            Test("inspect_test", filter=BRIEF_TESTS),
            Test("inspect_test", filter=f"*-{BRIEF_TESTS}:{LONG_TESTS}"),
            Test("inspect_test", filter=LONG_TESTS, is_slow=True),
            Test("inspect_interface_test", filter="*-All/*:MemoryOfACall*"),
            Test("inspect_interface_test", filter="All/*:MemoryOfACall*", is_slow=True),
            *(Test("mesh-l2vpn", ("build/release/tests/tool/write_capture",),
                   script=f"tests/tool/commands/{script}.sh")
              for script in ("commands", "differences", "input_output")),
        ),
        shared=("mesh_l2vpn_inspect",),
        stages=reader_stages,
        helpers=("write_capture",)),
}
