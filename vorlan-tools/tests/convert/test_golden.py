# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""One small report, and every target of it, worked out by hand.

s1 has 44 bases; its repeat of AC lies at 5 to 40. Column by column, with the operation below:

    ACACACACAGACACACTACACAC-CACACNNACACAC    37 columns, 36 bases
    ||||||||| |||||| |||||| |||||**||||||
    ACACACACACACACAC-ACACACACACACACACACAC    36 bases of the perfect repeat
    =========X======D======I=====XX======    9= 1X 6= 1D 6= 1I 5= 2X 6=

- 32 matches, 1 mismatch (base 10), 1 insertion (base 17), 1 deletion (before base 24), 2 Ns that are bridged
- score 32 - 2 (first copy) - 3 * 5 = 15; perfection (36 - 3 - 2) / 36 = 86.111; 36 / 2 = 18 copies
- to SAM an N differs: NM is 1 + 1 + 1 + 2 = 5, MD counts on over the insertion: 9 G 6 ^T 11 N 0 N 6
- GFF3 takes differing bases as aligned: 16 until the base that only the sequence has (D), then 6, then the
  base that only the perfect repeat has (I), then 13

s2 begins with GTGTGTGTG: its unit is AC on the other strand, its motif GT; 9 bases, score 7, 4.5 copies.
"""

from __future__ import annotations

import unittest

from random_runs import tools

REPORT = """\
# Results computed with:
#    Vorlan, version 3.3.10
# Parameter settings used in this search:\x20
# Input file name:                         hand.fa
#    Sequence range to process:            1 - last sequence
#    Satellites searched for:              imperfect repeats
#    Recursion depth:                      5
#    Maximum score reduction:              -
#    Minimum unit length:                  1
#    Maximum unit length:                  10
#    Minimum score:                        maximum (6, 0+1*unitlength )
#    Minimum length:                       maximum (0, 0+0*unitlength )
#    Min. to max. perfection range:        0 % - 100 %
#    Treat N's as:                         neutral
#    Max. succesive N's allowed:           2
#    Mismatch score:                       -5
#    Indel score:                          -5
#    Show shorter (not longer) of two repeat variants with equal score:  no
#    Number of flanking nucletides:        0
#    Remove mostly overlapping satellites: yes
#    Write file with masked seq.:          no
#    Computing perfections treat N's:      asMismatch
#    Report units as:                      alphabetical normal form using reverse complement
#    Output format:                        extended vorlan format
#    Print sequence mode:                  print alignment
#\x20
# Columns in lines of output providing repeat information:
# Column  1: Repeat unit length
# Column  2: Position at which repeat starts in current sequence
# Column  3: Position at which repeat ends in current sequence
# Column  4: Length of repeat in original sequence, i.e. (end-start+1)
# Column  5: Normalized repeat length, i.e. (end-start+1-insertions+deletions)
# Column  6: Repeat score
# Column  7: Repeat perfection
# Column  8: Number of mismatches
# Column  9: Number of insertions
# Column 10: Number of deletions
# Column 11: Number of N's
# Column 12: Repeat unit
#\x20
>s1 made by hand
sequence length: 44
    dinucleotide         5 :        40 |     36 bp |     36 BP |     15 pt |  86.111 % |   1 mis |   1 ins |   1 del |   2 N |  unit AC
Missense: (10,M),(17,I),(24,D),
ACACACACAGACACACTACACAC-CACACNNACACAC
||||||||| |||||| |||||| |||||**||||||
ACACACACACACACAC-ACACACACACACACACACAC
# Analysis of sequence "s1 made by hand" completed.
>empty
sequence length: 0
# Analysis of sequence "empty" completed.
>s2
sequence length: 12
    dinucleotide         1 :         9 |      9 bp |      9 BP |      7 pt | 100.000 % |   0 mis |   0 ins |   0 del |   0 N |  unit AC
Missense:\x20
GTGTGTGTG
|||||||||
GTGTGTGTG
# Analysis of sequence "s2" completed.
## Finished successfully. ##
"""

CIGAR = "9=1X6=1D6=1I5=2X6="
PERFECT = "AC" * 18

EXPECTED = {
    "bed": "s1\t4\t40\tAC\t15\t.\t2\t18.000\t86.111\t15\tAC\n"
           "s2\t0\t9\tAC\t7\t.\t2\t4.500\t100.000\t7\tGT\n",
    "tsv": "sequence\tstart\tend\tunit_length\tunit\tmotif\tbases\tlength\tcopies\tscore\tperfection\tmismatches\t"
           "insertions\tdeletions\tns\tcigar\n"
           f"s1\t5\t40\t2\tAC\tAC\t36\t36\t18.000\t15\t86.111\t1\t1\t1\t2\t{CIGAR}\n"
           "s2\t1\t9\t2\tAC\tGT\t9\t9\t4.500\t7\t100.000\t0\t0\t0\t0\t9=\n",
    "gff3": "##gff-version 3\n#!processor vorlan 3.3.10\n"
            "##sequence-region s1 1 44\n##sequence-region s2 1 12\n"
            "s1\tvorlan\tmicrosatellite\t5\t40\t15\t.\t.\tID=repeat1;Name=(AC)n;unit_length=2;unit=AC;motif=AC;"
            "copies=18.000;perfection=86.111;mismatches=1;insertions=1;deletions=1;ns=2;"
            "Target=(AC)n 1 36;Gap=M16 D1 M6 I1 M13\n"
            "s2\tvorlan\tmicrosatellite\t1\t9\t7\t.\t.\tID=repeat2;Name=(GT)n;unit_length=2;unit=AC;motif=GT;"
            "copies=4.500;perfection=100.000;mismatches=0;insertions=0;deletions=0;ns=0;Target=(GT)n 1 9\n",
    "paf": f"(AC)n\t36\t0\t36\t+\ts1\t44\t4\t40\t32\t37\t255\tNM:i:5\tAS:i:15\tcg:Z:{CIGAR}\n"
           "(GT)n\t9\t0\t9\t+\ts2\t12\t0\t9\t9\t9\t255\tNM:i:0\tAS:i:7\tcg:Z:9=\n",
    "sam": "@HD\tVN:1.6\tSO:coordinate\n@SQ\tSN:s1\tLN:44\n@SQ\tSN:s2\tLN:12\n"
           "@PG\tID:vorlan\tPN:vorlan\tVN:3.3.10\n"
           f"r1\t0\ts1\t5\t255\t{CIGAR}\t*\t0\t0\t{PERFECT}\t*\tNM:i:5\tMD:Z:9G6^T11N0N6\tAS:i:15\tul:i:2\tun:Z:AC\t"
           "mo:Z:AC\tcn:f:18\tpf:f:86.111\n"
           "r2\t0\ts2\t1\t255\t9=\t*\t0\t0\tGTGTGTGTG\t*\tNM:i:0\tMD:Z:9\tAS:i:7\tul:i:2\tun:Z:AC\tmo:Z:GT\t"
           "cn:f:4.5\tpf:f:100\n",
    "jsonl": '{"sequence":"s1","header":"s1 made by hand","sequence_length":44,"start":5,"end":40,"unit_length":2,'
             '"unit":"AC","motif":"AC","bases":36,"length":36,"copies":18.000,"score":15,"perfection":86.111,'
             '"mismatches":1,"insertions":1,"deletions":1,"ns":2,"events":"(10,M),(17,I),(24,D),",'
             f'"cigar":"{CIGAR}","alignment":["ACACACACAGACACACTACACAC-CACACNNACACAC",'
             '"||||||||| |||||| |||||| |||||**||||||","ACACACACACACACAC-ACACACACACACACACACAC"]}\n'
             '{"sequence":"s2","header":"s2","sequence_length":12,"start":1,"end":9,"unit_length":2,"unit":"AC",'
             '"motif":"GT","bases":9,"length":9,"copies":4.500,"score":7,"perfection":100.000,"mismatches":0,'
             '"insertions":0,"deletions":0,"ns":0,"cigar":"9=","alignment":["GTGTGTGTG","|||||||||","GTGTGTGTG"]}\n',
}


class GoldenTest(unittest.TestCase):
    """Compared as text, byte by byte."""

    maxDiff = None

    def test_every_target(self) -> None:
        for target, expected in EXPECTED.items():
            with self.subTest(target=target):
                self.assertEqual(tools("convert", "-t", target, "-", given=REPORT.encode()).decode(), expected)

    def test_the_report_itself_holds(self) -> None:
        self.assertEqual(tools("check", "-", given=REPORT.encode()), b"")


if __name__ == "__main__":
    unittest.main()
