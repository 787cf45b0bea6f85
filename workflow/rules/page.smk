# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# What is made of all genomes together, from their stats.json.

rule stats_of_all:
    input:
        table=config["genomes"],
        large=lambda wildcards: [stats_of(genome) for genome in FASTA if genome not in SMALL],
        small=markers_of_batches,
    output:
        f"{RESULTS}/stats.tsv",
    log:
        "logs/stats.log",
    params:
        script=SCRIPTS / "with_all_stats.sh",
        results=lambda wildcards, output: Path(output[0]).parent,
        tools=config["vorlan_tools"],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=memory_for_all,
    shell:
        "{params.script:q} {input.table:q} {params.results} {params.tools:q} stats --tsv {output} 2>{log}"


rule page:
    input:
        table=config["genomes"],
        large=lambda wildcards: [stats_of(genome) for genome in FASTA if genome not in SMALL],
        small=markers_of_batches,
    output:
        f"{RESULTS}/page.html",
    log:
        "logs/page.log",
    params:
        script=SCRIPTS / "with_all_stats.sh",
        results=lambda wildcards, output: Path(output[0]).parent,
        tools=config["vorlan_tools"],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=memory_for_all,
    shell:
        "{params.script:q} {input.table:q} {params.results} {params.tools:q} page -o {output} 2>{log}"
