#!/bin/bash
# one-node.sh PROGRAM DOCS PHOTO: brings up a Slurm of one node, without systemd and on ports of its
# own, and runs the array job of docs/cluster.md in it: four tasks over 200 pictures, one of which is
# killed with SIGKILL in the middle and requeued. Then every output must be there once, equal to what
# apply makes, with nothing else in the folder. Needs root, slurmctld, slurmd and munge.
set -euo pipefail
program=$1 docs=$2 photo=$3
pictures=200 tasks=4
[ "$(id -u)" -eq 0 ] || { echo "one-node.sh: start it as root: Slurm's daemons run as root here"; exit 1; }

work=$(mktemp -d)
daemons=() job=
finish() {
    local status=$? pid
    if [ -n "$job" ]; then
        scancel "$job" 2>/dev/null || true
        sleep 1
    fi
    for pid in "${daemons[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    if [ $status -ne 0 ]; then
        tail -n 20 "$work"/*.log "$work"/slurm/*.log 2>/dev/null || true
        echo "one-node.sh: FAILED; what is there lies in $work"
    else
        rm -rf "$work"
    fi
}
trap finish EXIT
fail() { echo "one-node.sh: $*"; exit 1; }
# wait_for SECONDS WHAT COMMAND...: until the command succeeds.
wait_for() {
    local until=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $until ] || fail "$what did not come about"
        sleep 0.2
    done
}

start_munge() {
    mkdir -p "$work/munge"
    head -c 1024 /dev/urandom >"$work/munge/key"
    chmod 600 "$work/munge/key"
    chmod 711 "$work" "$work/munge"
    munged --foreground --force --key-file="$work/munge/key" --socket="$work/munge/socket" \
        --pid-file="$work/munge/pid" --seed-file="$work/munge/seed" --log-file="$work/munge.log" \
        >"$work/munged.log" 2>&1 &
    daemons+=($!)
    wait_for 20 "munge" munge --socket="$work/munge/socket" --no-input
}

start_slurm() {
    local host cores memory
    host=$(hostname -s)
    cores=$(nproc)
    mkdir -p "$work/slurm/state" "$work/slurm/spool"
    export SLURM_CONF=$work/slurm/slurm.conf
    cat >"$SLURM_CONF" <<CONF
ClusterName=one
SlurmctldHost=$host(127.0.0.1)
SlurmUser=root
SlurmdUser=root
SlurmctldPort=${SLURMCTLD_PORT:-36817}
SlurmdPort=${SLURMD_PORT:-36818}
AuthType=auth/munge
AuthInfo=socket=$work/munge/socket
CredType=cred/munge
StateSaveLocation=$work/slurm/state
SlurmdSpoolDir=$work/slurm/spool
SlurmctldPidFile=$work/slurm/ctld.pid
SlurmdPidFile=$work/slurm/d.pid
SlurmctldLogFile=$work/slurm/ctld.log
SlurmdLogFile=$work/slurm/d.log
ProctrackType=proctrack/pgid
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
AccountingStorageType=accounting_storage/none
SelectType=select/cons_tres
SelectTypeParameters=CR_Core
MpiDefault=none
ReturnToService=2
SchedulerParameters=sched_interval=1,batch_sched_delay=0
JobRequeue=1
NodeName=$host NodeAddr=127.0.0.1 CPUs=$cores State=UNKNOWN
PartitionName=all Nodes=$host Default=YES MaxTime=INFINITE State=UP OverSubscribe=FORCE:4
CONF
    slurmctld -D >"$work/slurmctld.log" 2>&1 &
    daemons+=($!)
    slurmd -D -N "$host" >"$work/slurmd.log" 2>&1 &
    daemons+=($!)
    wait_for 60 "the node" bash -c "sinfo -h -o %T | grep -qE 'idle|mixed'"
}

make_pictures() {
    mkdir -p "$work/archive/in/below"
    local i
    "$program" apply Blinds "$photo" -o "$work/archive/one.png" --quiet
    for ((i = 0; i < pictures; ++i)); do
        # Every picture differs: its strips begin elsewhere.
        echo "{\"input\": \"$work/archive/one.png\", \"effect\": \"Blinds\"," \
            "\"parameters\": {\"Width\": $((i % 100 + 2)), \"Opacity\": $((i / 100 * 40 + 30))}," \
            "\"output\": \"$work/archive/in/$([ $((i % 2)) -eq 0 ] || echo below/)p$i.png\"}"
    done >"$work/archive/rows"
    "$program" batch --manifest "$work/archive/rows" --log "$work/archive/rows.log" --quiet
    rm "$work"/archive/{rows,rows.log,one.png}
}

# The script that the document shows, as a user would copy it.
take_script() {
    sed -n '/^    #!\/bin\/bash$/,/^$/p' "$docs/cluster.md" | sed 's/^    //' >"$work/archive/stone.sbatch"
    grep -q '^#SBATCH --array=1-4' "$work/archive/stone.sbatch" || fail "no script in cluster.md"
}

lines() { cat "$work"/archive/logs/*.jsonl 2>/dev/null | grep -c "\"event\":\"$1\"" || true; }
has_done() { [ "$(lines done)" -ge "$1" ]; }

# A task that is requeued would wait two minutes before it is started again.
has_ended() {
    scontrol update JobId="${job}_$killed" StartTime=now || true
    [ -z "$(squeue -h -j "$job")" ]
}

# Kills the program of one task while it works, as a node does that runs out of memory; Slurm puts
# the task back into the queue.
kill_one_task() {
    local task pid environment
    wait_for 60 "the first pictures" has_done 5
    for pid in $(pgrep -x cmdtexture); do
        environment=$(tr '\0' '\n' <"/proc/$pid/environ" 2>/dev/null) || continue
        grep -qxF "SLURM_CONF=$SLURM_CONF" <<<"$environment" || continue
        task=$(sed -n 's/^SLURM_ARRAY_TASK_ID=//p' <<<"$environment")
        [ -n "$task" ] || continue
        kill -KILL "$pid"
        killed=$task
        echo "killed task $task after $(lines done) pictures"
        return
    done
    fail "no task was at work"
}

compare() {
    local in out made=0
    mkdir "$work/expected"
    while read -r in; do
        out=${in#in/}
        [ -f "$work/archive/out/$out" ] || fail "$out is missing"
        "$program" apply Sandstone "$work/archive/$in" -o "$work/expected.png" --overwrite --quiet
        cmp "$work/expected.png" "$work/archive/out/$out" || fail "$out differs from apply"
        made=$((made + 1))
    done < <(cd "$work/archive" && find in -type f)
    [ "$made" -eq $pictures ] || fail "$made pictures instead of $pictures"
    [ "$(find "$work/archive/out" -type f | wc -l)" -eq $pictures ] ||
        fail "the folder of outputs holds something else, too"
}

start_munge
start_slurm
make_pictures
take_script
cd "$work/archive"
mkdir -p logs
export PATH=$(dirname "$program"):$PATH
job=$(sbatch --parsable stone.sbatch)
kill_one_task
wait_for 300 "the end of job $job" has_ended
"$program" batch --report logs/*.jsonl >missing.jsonl || fail "the report says that it is not complete"
[ ! -s missing.jsonl ] || fail "pictures are missing: $(cat missing.jsonl)"
[ "$(lines done)" -eq $pictures ] || fail "$(lines done) times done for $pictures pictures"
[ "$(grep -l '"event":"run"' logs/*.jsonl | wc -l)" -eq $tasks ] || fail "not $tasks logs"
[ "$(cat logs/*.jsonl | grep -c '"event":"run"')" -gt $tasks ] || fail "no task was run again"
compare
echo "cluster: $pictures pictures by $tasks tasks, one killed and requeued: all there once, equal to apply"
