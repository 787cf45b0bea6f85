#!/bin/sh
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# job_status.sh JOB: says running, success or failed, as Snakemake asks. Needs no accounting database; with
# one, also jobs are found that the controller has forgotten. A controller that does not answer is no
# reason to give a job up.

if answer=$(scontrol --oneliner show job "$1" 2>&1); then
  state=${answer#*JobState=}
  state=${state%% *}
else
  case $answer in
    *'Invalid job id'*) state=$(sacct --noheader --parsable2 --allocations --jobs="$1" --format=State 2>/dev/null) ;;
    *) state=UNKNOWN ;;
  esac
fi

case $state in
  COMPLETED) echo success ;;
  PENDING | CONFIGURING | RUNNING | COMPLETING | SUSPENDED | REQUEUED | REQUEUE_HOLD | RESIZING | SIGNALING | \
    STAGE_OUT | STOPPED | UNKNOWN) echo running ;;
  *) echo failed ;;
esac
