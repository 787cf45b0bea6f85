# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# From a genome to its report: unpack, cut, search each piece, merge.

rule unpack:
    input:
        fasta_of,
    output:
        temp(f"{WORK}/{{genome}}/genome.fa"),
    log:
        "logs/{genome}/unpack.log",
    conda:
        "../envs/shell.yaml"
    resources:
        runtime=step_minutes,
    shell:
        "( gzip -dc {input} >{output}.unfinished && mv -f {output}.unfinished {output} || "
        "{{ rm -f {output}.unfinished; echo 'vorlan-workflow: {input}: cannot be unpacked.' >&2; exit 1; }} "
        ") 2>{log}"


checkpoint cut:
    input:
        text_of,
    output:
        pieces=f"{WORK}/{{genome}}/pieces.tsv",
    log:
        "logs/{genome}/cut.log",
    params:
        script=SCRIPTS / "cut_genome.py",
        vorlan=config["vorlan"],
        options=config["options"],
        size=config["piece_size"],
        name=lambda wildcards: f"{wildcards.genome}: {FASTA[wildcards.genome]}",
    conda:
        "../envs/shell.yaml"
    resources:
        runtime=step_minutes,
    shell:
        "python3 {params.script:q} --vorlan {params.vorlan:q} --options={params.options:q} --name {params.name:q} "
        "--size {params.size} {input} {output.pieces} 2>{log}"


rule search:
    input:
        text=text_of,
        pieces=f"{WORK}/{{genome}}/pieces.tsv",
    output:
        temp(f"{WORK}/{{genome}}/parts/{{piece}}.report"),
    log:
        "logs/{genome}/search_{piece}.log",
    params:
        script=SCRIPTS / "search_piece.sh",
        vorlan=config["vorlan"],
        options=shlex.split(config["options"]),
    conda:
        "../envs/shell.yaml"
    resources:
        mem_mb=search_memory,
        runtime=search_minutes,
        nice=search_nice,
    shell:
        "{params.script:q} {input.pieces} {wildcards.piece} {input.text} {output} {params.vorlan:q} {params.options:q} "
        "2>{log}"


# The names of thousands of parts are too long for the one argument that a shell gets.
rule merge:
    input:
        parts=parts_of,
        pieces=f"{WORK}/{{genome}}/pieces.tsv",
    output:
        f"{RESULTS}/{{genome}}/{config['report']}",
    log:
        "logs/{genome}/merge.log",
    params:
        tools=config["vorlan_tools"],
        name=fasta_of,
        folder=f"{WORK}/{{genome}}/parts",
    conda:
        "../envs/shell.yaml"
    resources:
        runtime=step_minutes,
    shell:
        "( cut -f 1 {input.pieces} | sed -e 1d -e 's:.*:{params.folder}/&.report:' | "
        "xargs -x -s 1000000 {params.tools:q} merge --slices --input {params.name} -o {output} && "
        "rm -f {params.folder}/*.unfinished.* ) 2>{log}"
