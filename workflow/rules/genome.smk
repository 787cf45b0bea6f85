# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# What is made of the report of one genome. vorlan-tools gives a file its name when it is whole.

REPORT = f"{RESULTS}/{{genome}}/{config['report']}"
CUT_NAMES = "--cut-names" if config["cut_names"] else ""


rule check:
    input:
        report=REPORT,
        fasta=fasta_of,
    output:
        f"{RESULTS}/{{genome}}/check.txt",
    log:
        "logs/{genome}/check.log",
    params:
        tools=config["vorlan_tools"],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=step_memory,
        runtime=step_minutes,
    shell:
        "( {params.tools:q} check -g {input.fasta} {input.report} && "
        "echo '{input.report} holds, checked against {input.fasta}' >{output}.unfinished && "
        "mv -f {output}.unfinished {output} ) >{log} 2>&1"


rule convert:
    input:
        REPORT,
    output:
        f"{RESULTS}/{{genome}}/repeats.{{ending}}",
    log:
        "logs/{genome}/convert_{ending}.log",
    params:
        tools=config["vorlan_tools"],
        target=lambda wildcards: wildcards.ending.removesuffix(".gz"),
        names=CUT_NAMES,
        index=lambda wildcards: "--sort --write-index" if wildcards.ending in ("bed.gz", "gff3.gz")
            else "--write-index" if wildcards.ending == "bam" else "",
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=step_memory,
        runtime=step_minutes,
    shell:
        "{params.tools:q} convert -t {params.target} {params.names} {params.index} -o {output} {input} 2>{log}"


rule mask:
    input:
        report=REPORT,
        fasta=fasta_of,
    output:
        f"{RESULTS}/{{genome}}/{{masked,masked\\.fa(\\.gz)?}}",
    log:
        "logs/{genome}/mask_{masked}.log",
    params:
        tools=config["vorlan_tools"],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=step_memory,
        runtime=step_minutes,
    shell:
        "{params.tools:q} mask -g {input.fasta} -o {output} {input.report} 2>{log}"


rule catalog:
    input:
        report=REPORT,
        fasta=fasta_of,
    output:
        catalog=f"{RESULTS}/{{genome}}/catalog.{{genotyper}}.{{ending,bed|json}}",
        rejected=f"{RESULTS}/{{genome}}/catalog.{{genotyper}}.{{ending}}.rejected.tsv",
    log:
        "logs/{genome}/catalog_{genotyper}.{ending}.log",
    params:
        tools=config["vorlan_tools"],
        names=CUT_NAMES,
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=step_memory,
        runtime=step_minutes,
    shell:
        "{params.tools:q} catalog -t {wildcards.genotyper} -g {input.fasta} {params.names} --rejected {output.rejected} "
        "-o {output.catalog} {input.report} 2>{log}"


rule stats:
    input:
        report=REPORT,
        fasta=fasta_of,
    output:
        json=f"{RESULTS}/{{genome}}/stats.json",
        table=f"{RESULTS}/{{genome}}/stats.tsv",
    log:
        "logs/{genome}/stats.log",
    params:
        tools=config["vorlan_tools"],
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=step_memory,
        runtime=step_minutes,
    shell:
        "{params.tools:q} stats -g {input.fasta} --name {wildcards.genome} --json {output.json} --tsv {output.table} "
        "{input.report} 2>{log}"
