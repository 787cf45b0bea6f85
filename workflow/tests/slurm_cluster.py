# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""A Slurm of one's own on one machine: a controller and some virtual nodes, without systemd and cgroups.

Everything lies in a folder that is given, ports are free ones, the key is new. The daemons are children of this
process and end with it, however it ends.
"""

from __future__ import annotations

import contextlib
import ctypes
import os
import pathlib
import pwd
import signal
import socket
import subprocess
import tempfile
import time
import unittest
from collections.abc import Iterator

SBIN = "/usr/sbin"
SECONDS_TO_START = 30
PR_SET_PDEATHSIG = 1


def free_ports(count: int) -> list[int]:
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


def die_with_parent() -> None:
    os.setsid()
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGKILL)


def parent_of(process: int) -> int:
    with contextlib.suppress(OSError):
        return int(pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[1])
    return 0


def name_of(process: int) -> str:
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/comm").read_text().strip()
    return ""


class SlurmCluster:
    """Use as a context; `environment` is what commands of Slurm need."""

    def __init__(self, folder: pathlib.Path, nodes: int = 3, memory_mb: int = 4096) -> None:
        self.folder = folder
        self.nodes = [f"n{number}" for number in range(1, nodes + 1)]
        self.memory_mb = memory_mb
        self.configuration = folder / "slurm.conf"
        self.environment = {**os.environ, "SLURM_CONF": str(self.configuration)}
        self.daemons: dict[str, subprocess.Popen] = {}

    def __enter__(self) -> SlurmCluster:
        for name in ("run", "state", "spool", "log"):
            (self.folder / name).mkdir(parents=True, exist_ok=True)
        self.write_configuration()
        try:
            self.start_munge()
            self.start("slurmctld", [f"{SBIN}/slurmctld", "-D", "-c", "-f", str(self.configuration)])
            for node in self.nodes:
                self.start_node(node)
            self.wait_for(self.all_are_idle, "all nodes are idle")
        except BaseException:
            self.stop()
            raise
        return self

    def __exit__(self, *_: object) -> None:
        self.stop()

    def write_configuration(self) -> None:
        host = socket.gethostname().split(".")[0]
        user = pwd.getpwuid(os.getuid()).pw_name
        controller, *ports = free_ports(1 + len(self.nodes))
        lines = [
            "ClusterName=vorlan", f"SlurmctldHost={host}(127.0.0.1)", f"SlurmctldPort={controller}",
            f"SlurmUser={user}", f"SlurmdUser={user}", "AuthType=auth/munge", "CredType=cred/munge",
            # A requeued job may begin again after so many seconds.
            f"AuthInfo=socket={self.folder}/run/munge.sock,cred_expire=5",
            "ProctrackType=proctrack/linuxproc", "TaskPlugin=task/none", "JobAcctGatherType=jobacct_gather/linux",
            "SelectType=select/cons_tres", "SelectTypeParameters=CR_CPU_Memory",
            "SlurmdParameters=config_overrides", "ReturnToService=2", "MpiDefault=none", "MailProg=/bin/true",
            "AccountingStorageType=accounting_storage/none", "JobCompType=jobcomp/filetxt",
            f"JobCompLoc={self.folder}/log/jobs", "JobRequeue=1", "MinJobAge=3600", "KillWait=2",
            "SlurmdTimeout=10", "SwitchType=switch/none",
            "SchedulerParameters=sched_interval=1,bf_interval=1,batch_sched_delay=0",
            f"StateSaveLocation={self.folder}/state", f"SlurmdSpoolDir={self.folder}/spool/%n",
            f"SlurmctldPidFile={self.folder}/run/slurmctld.pid", f"SlurmdPidFile={self.folder}/run/%n.pid",
            f"SlurmctldLogFile={self.folder}/log/slurmctld", f"SlurmdLogFile={self.folder}/log/%n",
        ]
        for node, port in zip(self.nodes, ports):
            (self.folder / "spool" / node).mkdir(exist_ok=True)
            lines.append(f"NodeName={node} NodeHostname={host} NodeAddr=127.0.0.1 Port={port} CPUs=1 "
                         f"RealMemory={self.memory_mb}")
        lines.append(f"PartitionName=main Nodes={','.join(self.nodes)} Default=YES State=UP")
        self.configuration.write_text("\n".join(lines) + "\n")
        # Nothing here uses cgroups, but looking for their version would fail where none are mounted.
        (self.folder / "cgroup.conf").write_text("CgroupPlugin=cgroup/v1\nCgroupAutomount=no\n")

    def start_munge(self) -> None:
        run = self.folder / "run"
        key = run / "munge.key"
        key.touch(mode=0o600)
        key.write_bytes(os.urandom(1024))
        self.start("munged", [f"{SBIN}/munged", "--foreground", "--force", f"--key-file={key}",
                              f"--socket={run}/munge.sock", f"--pid-file={run}/munged.pid",
                              f"--log-file={self.folder}/log/munged", f"--seed-file={run}/munge.seed"])
        self.wait_for((run / "munge.sock").exists, "munged listens")

    def start(self, name: str, command: list[str]) -> None:
        with open(self.folder / "log" / f"{name}.out", "ab") as out:
            self.daemons[name] = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=out, stderr=out,
                                                  env=self.environment, preexec_fn=die_with_parent)

    def start_node(self, node: str) -> None:
        self.start(node, [f"{SBIN}/slurmd", "-D", "-f", str(self.configuration), "-N", node])

    def ask(self, *command: str) -> str:
        return subprocess.run(command, env=self.environment, check=False, text=True, timeout=60,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout

    def all_are_idle(self) -> bool:
        return self.ask("sinfo", "--noheader", "--Node", "--format=%T").split() == ["idle"] * len(self.nodes)

    def wait_for(self, holds, what: str, seconds: float = SECONDS_TO_START) -> None:
        end = time.monotonic() + seconds
        while not holds():
            if time.monotonic() > end:
                logs = "\n".join(log.read_text(errors="replace")[-1500:] for log in (self.folder / "log").iterdir())
                raise TimeoutError(f"It took more than {seconds} s until {what}.\n{logs}")
            time.sleep(0.1)

    def kill_node(self, node: str) -> None:
        """As if its power were gone: the daemon and all processes of its jobs."""
        self.daemons[node].kill()
        self.daemons.pop(node).wait()
        in_jobs = list(self.processes(node))
        # The keepers of the jobs go first, or they would tell the controller how their jobs ended.
        keepers = {parent for parent in map(parent_of, in_jobs) if name_of(parent).startswith("slurmstepd")}
        for process in [*keepers, *in_jobs]:
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)

    def processes(self, node: str | None = None) -> Iterator[int]:
        """Processes of jobs, of one node or of all."""
        for folder in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                variables = (folder / "environ").read_bytes().split(b"\0")
            except OSError:
                continue
            if f"SLURM_CONF={self.configuration}".encode() not in variables:
                continue
            if any(variable == f"SLURMD_NODENAME={node}".encode() if node else
                   variable.startswith(b"SLURMD_NODENAME=") for variable in variables):
                yield int(folder.name)

    def stop(self) -> None:
        if "slurmctld" in self.daemons and self.daemons["slurmctld"].poll() is None:
            self.ask("scancel", f"--user={pwd.getpwuid(os.getuid()).pw_name}")
        # munged goes last: the others ask for credentials until they end.
        for name in sorted(self.daemons, key=lambda name: name == "munged"):
            daemon = self.daemons[name]
            daemon.terminate()
            try:
                daemon.wait(10)
            except subprocess.TimeoutExpired:
                daemon.kill()
                daemon.wait()
        self.daemons.clear()
        for process in list(self.processes()):
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)


class SlurmTest(unittest.TestCase):
    """Tests of a class share a Slurm, and a folder that goes with them."""

    folder: pathlib.Path
    cluster: SlurmCluster

    @classmethod
    def setUpClass(cls) -> None:
        folder = tempfile.TemporaryDirectory(prefix="vorlan-slurm-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        cls.cluster = cls.enterClassContext(SlurmCluster(cls.folder / "cluster"))
