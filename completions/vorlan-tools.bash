# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# Completion of vorlan-tools in bash: subcommands, their options, the values of options that choose, file names.

# A line for each subcommand: its options.
declare -gA _vorlan_tools_options=(
  [calibrate]='-g --genome -k --word-length --copies --seed --window --per-sequence --mask-length -j --jobs
    --vorlan --tsv --json -h --help'
  [catalog]='-t --to -g --genome -o --output -O --output-type --write-index --rejected --overlaps --min-gap --flank
    --max-period --max-length --trim-to-units --cut-names --unit-length --min-perfection --min-length --min-copies
    -h --help'
  [check]='-g --genome --limit -h --help'
  [compare]='--flank --all --vcf -o --output -h --help'
  [consensus]='-g --genome -o --output -t --to --begin --unit-length --min-perfection
    --min-length --min-copies -h --help'
  [convert]='-t --to -o --output -O --output-type --write-index --sort --cut-names --calibration -@ --threads
    --unit-length --min-perfection --min-length --min-copies -h --help'
  [count]='-l --loci -g --genome -o --output --flank --max-length -h --help'
  [mask]='-g --genome -o --output -O --output-type -@ --threads --hard --keep-lower-case --write-index -h --help'
  [merge]='-o --output --input --slices --masked -h --help'
  [monomers]='-g --genome -o --output -t --to --begin --unit-length --min-perfection
    --min-length --min-copies -h --help'
  [page]='-g --genome --name --calibration -o --output -h --help'
  [resolve]='--strategy --max-gap -o --output -O --output-type --members --cut-names --unit-length --min-perfection
    --min-length --min-copies -h --help'
  [run]='-j --jobs --resume -q --quiet --vorlan --slice-size --reports --ending -h --help'
  [ssr]='--min --compound --min-perfection -o --output --units --sequences --compounds -h --help'
  [stats]='-g --genome --name --tsv --json --multiqc -h --help'
)
# By subcommand and option: the values; empty where any number or text may stand. File names are completed for
# options that are not listed.
declare -gA _vorlan_tools_values=(
  [calibrate -k]='1 2 3 4 5 6'
  [calibrate --word-length]='1 2 3 4 5 6'
  [calibrate --copies]=''
  [calibrate --seed]=''
  [calibrate --window]=''
  [calibrate --mask-length]=''
  [calibrate -j]=''
  [calibrate --jobs]=''
  [catalog -t]='trgt hipstr gangstr eh longtr atarva straglr'
  [catalog --to]='trgt hipstr gangstr eh longtr atarva straglr'
  [catalog -O]='z u'
  [catalog --output-type]='z u'
  [catalog --overlaps]='best all drop'
  [catalog --min-gap]=''
  [catalog --flank]=''
  [catalog --max-period]=''
  [catalog --max-length]=''
  [catalog --unit-length]=''
  [catalog --min-perfection]=''
  [catalog --min-length]=''
  [catalog --min-copies]=''
  [check --limit]=''
  [compare --flank]=''
  [consensus -t]='fasta tsv'
  [consensus --to]='fasta tsv'
  [consensus --begin]=''
  [consensus --unit-length]=''
  [consensus --min-perfection]=''
  [consensus --min-length]=''
  [consensus --min-copies]=''
  [convert -t]='bed gff3 jsonl sam bam paf tsv'
  [convert --to]='bed gff3 jsonl sam bam paf tsv'
  [convert -O]='z u'
  [convert --output-type]='z u'
  [convert -@]=''
  [convert --threads]=''
  [convert --unit-length]=''
  [convert --min-perfection]=''
  [convert --min-length]=''
  [convert --min-copies]=''
  [count --flank]=''
  [count --max-length]=''
  [mask -O]='z u'
  [mask --output-type]='z u'
  [mask -@]=''
  [mask --threads]=''
  [monomers -t]='bed fasta'
  [monomers --to]='bed fasta'
  [monomers --begin]=''
  [monomers --unit-length]=''
  [monomers --min-perfection]=''
  [monomers --min-length]=''
  [monomers --min-copies]=''
  [page --name]=''
  [resolve --strategy]='best union tile'
  [resolve --max-gap]=''
  [resolve -O]='z u'
  [resolve --output-type]='z u'
  [resolve --unit-length]=''
  [resolve --min-perfection]=''
  [resolve --min-length]=''
  [resolve --min-copies]=''
  [run -j]=''
  [run --jobs]=''
  [run --slice-size]=''
  [run --ending]=''
  [ssr --min]=''
  [ssr --compound]=''
  [ssr --min-perfection]=''
  [stats --name]=''
)

_vorlan_tools() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  if [[ $COMP_CWORD -eq 1 ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${!_vorlan_tools_options[*]} --help --version" -- "$current")
  elif [[ ${_vorlan_tools_values[$command $previous]+known} ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${_vorlan_tools_values[$command $previous]}" -- "$current")
  elif [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${_vorlan_tools_options[$command]}" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
    compopt -o filenames 2>/dev/null
  fi
}

complete -F _vorlan_tools vorlan-tools
