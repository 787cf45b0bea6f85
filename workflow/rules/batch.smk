# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# Small genomes that share a job. A Snakemake within the job takes the rules for each genome, and only
# what is missing; what fails for one genome does not keep the others from ending.

rule batch:
    input:
        lambda wildcards: [FASTA[genome] for genome in BATCHES[wildcards.batch]],
    output:
        f"{WORK}/batches/{{batch}}.done",
    log:
        "logs/batches/{batch}.log",
    params:
        python=sys.executable,
        snakefile=Path(workflow.basedir) / "Snakefile",
        config=json.dumps(config, sort_keys=True),
        files=lambda wildcards: [file for genome in BATCHES[wildcards.batch] for file in files_of(genome)],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=batch_memory,
        runtime=batch_minutes,
    shell:
        "( printf %s {params.config:q} >{output}.config.json && "
        "VORLAN_BATCH={wildcards.batch} {params.python:q} -m snakemake --snakefile {params.snakefile:q} --configfile {output}.config.json "
        "--cores {threads} --nolock --no-hooks --nocolor --scheduler greedy --keep-going --rerun-incomplete "
        "{params.files} && touch {output} ) >{log} 2>&1"
