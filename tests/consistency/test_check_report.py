#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
"""The report check against reports written by hand: one that is right, and many with one fault each."""

from __future__ import annotations

import unittest

from check_report import (Findings, check_report, is_primitive, longest_n_run, mostly_overlap, normal_form,
                          order_faults)
from fasta_records import Record, read_fasta
from random_case import random_case
from report_settings import (ALPHABETICAL, ALPHABETICAL_BOTH_STRANDS, EXTEND_EXACT, Bounds, ReportError, Rule,
                             Settings, bounds_of)
from reported_repeat import ReportedRepeat
from run_consistency import coverage_faults

HEADER = """\
# Results computed with:
#    Vorlan, version 3.3.10
# Parameter settings used in this search: 
# Input file name:                         in.fa
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
#    Number of flanking nucletides:        3
#    Remove mostly overlapping satellites: yes
#    Write file with masked seq.:          no
#    Computing perfections treat N's:      asMismatch
#    Report units as:                      alphabetical normal form using reverse complement
#    Output format:                        extended vorlan format
#    Print sequence mode:                  print alignment
# 
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
# 
"""

# Three bases, a diverged repeat of AC of 40 bases, four bases, CTT four times, two bases: 61 residues.
# The repeat of AC: 10 bases, T for A, 7 bases, an additional G, 8 bases, A lost, 7 bases, NN, 4 bases. Its
# score: 36 matches less the first copy (2) less three edits (15) is 19; perfection: 40 unit bases less three
# edits less two N, of 40, is 87.5 %.
FASTA = (b">demo one\nGGTACACACACACTCACACACGACACACAC\nCACACACNNACAC" b"GTTG" b"CTTCTTCTTCTT" b"GA\n"
         b">plain\nacgt\n")

DIVERGED = """\
    dinucleotide         4 :        43 |     40 bp |     40 BP |     19 pt |  87.500 % |   1 mis |   1 ins |   1 del |   2 N |  unit AC
Missense: (11,M),(19,I),(28,D),
GGT:ACACACACACTCACACACGACACACAC-CACACACNNACAC:GTT
    |||||||||| ||||||| |||||||| |||||||**||||    
    ACACACACACACACACAC-ACACACACACACACACACACAC    
"""
# Read on the other strand, AAG is the smallest rotation: CTT has the reverse complement AAG.
PERFECT = """\
   trinucleotide        48 :        59 |     12 bp |     12 BP |      9 pt | 100.000 % |   0 mis |   0 ins |   0 del |   0 N |  unit AAG
Missense: 
TTG:CTTCTTCTTCTT:GA
    ||||||||||||   
    CTTCTTCTTCTT   
"""
FIRST_RECORD = ">demo one\nsequence length: 61\n"
SECOND_RECORD = '# Analysis of sequence "demo one" completed.\n>plain\nsequence length: 4\n'
END = '# Analysis of sequence "plain" completed.\n## Finished successfully. ##\n'
REPORT = HEADER + FIRST_RECORD + DIVERGED + PERFECT + SECOND_RECORD + END


def changed(text: str, *replacements: tuple[str, str]) -> str:
    """The text with each old piece, which must be there exactly once, replaced by the new one."""
    for old, new in replacements:
        if text.count(old) != 1:
            raise ValueError(f"{old!r} stands {text.count(old)} times in the text")
        text = text.replace(old, new)
    return text


def without_n_column(text: str) -> str:
    """The report as it looks when N is scored as a mismatch: no column tells the number of N."""
    text = changed(text, ("# Column 11: Number of N's\n", ""), ("Column 12", "Column 11"))
    return text.replace("  2 N | ", "").replace("  0 N | ", "").replace(" |  unit", " |  unit")


def small_report(residues: str, entry: str, *settings: tuple[str, str]) -> tuple[str, bytes]:
    """Report and input of one record with one entry and no flanks."""
    header = changed(HEADER, ("nucletides:        3", "nucletides:        0"), *settings)
    report = (f"{header}>s\nsequence length: {len(residues)}\n{entry}"
              '# Analysis of sequence "s" completed.\n## Finished successfully. ##\n')
    return report, f">s\n{residues}\n".encode()


class ReportTest(unittest.TestCase):
    """Helpers for the cases below."""

    def findings(self, report: str, fasta: bytes = FASTA) -> Findings:
        return check_report(report.encode("latin-1"), fasta)

    def assert_true_report(self, report: str, fasta: bytes = FASTA) -> None:
        self.assertEqual([], self.findings(report, fasta).faults)

    def assert_fault(self, fault: str, report: str, fasta: bytes = FASTA) -> None:
        faults = self.findings(report, fasta).faults
        self.assertTrue(any(fault in found for found in faults), f"{fault!r} is not among {faults}")

    def assert_only_fault(self, fault: str, report: str, fasta: bytes = FASTA) -> None:
        self.assert_fault(fault, report, fasta)
        self.assertEqual(1, len(self.findings(report, fasta).faults), self.findings(report, fasta).faults)


class TrueReports(ReportTest):

    def test_the_report_holds(self) -> None:
        findings = self.findings(REPORT)
        self.assertEqual([], findings.faults)
        self.assertEqual((2, 2), (findings.records, findings.repeats))
        self.assertEqual({"|": 48, "*": 2, "M": 1, "I": 1, "D": 1}, findings.kinds)

    def test_ns_left_out_of_the_perfection(self) -> None:
        # 35 of the 38 unit bases that do not face an N.
        self.assert_true_report(changed(REPORT, ("asMismatch", "asNeutral"), (" 87.500", " 92.105")))

    def test_ns_counted_as_matches(self) -> None:
        self.assert_true_report(changed(REPORT, ("asMismatch", "asMatch"), (" 87.500", " 92.500")))

    def test_units_of_one_strand(self) -> None:
        report = changed(REPORT, (" using reverse complement", ""), ("unit AAG", "unit CTT"))
        self.assert_true_report(report)

    def test_units_as_found(self) -> None:
        as_found = ("alphabetical normal form using reverse complement", "as they are")
        for unit in ("CTT", "TTC", "TCT"):
            self.assert_true_report(changed(REPORT, as_found, ("unit AAG", f"unit {unit}")))

    def test_first_record_left_out(self) -> None:
        report = changed(HEADER, ("1 - last sequence", "2 - 2")) + ">plain\nsequence length: 4\n" + END
        self.assert_true_report(report)

    def test_last_record_left_out(self) -> None:
        report = changed(HEADER, ("1 - last sequence", "1 - 1")) + FIRST_RECORD + DIVERGED + PERFECT
        self.assert_true_report(report + SECOND_RECORD.split(">")[0] + "## Finished successfully. ##\n")

    def test_named_report_file(self) -> None:
        name = "# Output file name:                        out.txt\n"
        self.assert_true_report(changed(REPORT, ("#    Sequence range", name + "#    Sequence range")))

    def test_a_malformed_record_ends_the_report(self) -> None:
        report = HEADER + FIRST_RECORD + DIVERGED + PERFECT + SECOND_RECORD.split(">")[0]
        self.assert_true_report(report, FASTA.replace(b"acgt", b"ac1gt"))

    def test_exact_search_in_the_short_format(self) -> None:
        entry = """\
  mononucleotide         2 :         8 |      7 bp |      7 BP |      6 pt | 100.000 % | unit A
TTTTTTT
|||||||
TTTTTTT
"""
        self.assert_true_report(*small_report("GTTTTTTTG", entry, *EXACT_SHORT))

    def test_label_of_a_longer_unit(self) -> None:
        entry = """\
    7-nucleotide         2 :        15 |     14 bp |     14 BP |      7 pt | 100.000 % |   0 mis |   0 ins |   0 del |   0 N |  unit AAACCTG
Missense: 
AACCTGAAACCTGA
||||||||||||||
AACCTGAAACCTGA
"""
        self.assert_true_report(*small_report("GAACCTGAAACCTGAG", entry))

    def test_n_as_a_mismatch(self) -> None:
        entry = """\
    dinucleotide         2 :        17 |     16 bp |     16 BP |      8 pt |  93.750 % |   1 mis |   0 ins |   0 del |  unit AC
Missense: (9,M),
ACACACACNCACACAC
|||||||| |||||||
ACACACACACACACAC
"""
        report, fasta = small_report("GACACACACNCACACACG", entry, ("neutral", "missense"))
        self.assert_true_report(without_n_column(report), fasta)

    def test_deletion_to_the_right_of_the_only_seeds(self) -> None:
        # T is expected where C stands, so T is skipped; to the right of the gap there is no whole copy.
        entry = """\
   trinucleotide         2 :        14 |     13 bp |     14 BP |      8 pt |  92.857 % |   0 mis |   0 ins |   1 del |   0 N |  unit AAG
Missense: (12,D),
CTTCTTCTTCT-CT
||||||||||| ||
CTTCTTCTTCTTCT
"""
        self.assert_true_report(*small_report("GCTTCTTCTTCTCTGA", entry, CHEAP_INDELS))

    def test_deletion_to_the_left_of_the_only_seeds(self) -> None:
        # Read to the left, T fits once, then T is expected where A stands; CA alone is no whole copy.
        entry = """\
 tetranucleotide         2 :        16 |     15 bp |     16 BP |      9 pt |  93.750 % |   0 mis |   0 ins |   1 del |   0 N |  unit AATG
Missense: (3,D),
CA-TCATTCATTCATT
|| |||||||||||||
CATTCATTCATTCATT
"""
        report, fasta = small_report("GCATCATTCATTCATTG", entry, CHEAP_INDELS)
        self.assert_true_report(report, fasta)
        report = changed(report, ("(3,D)", "(4,D)"), ("\nCA-TC", "\nCAT-C"), ("\n|| ||", "\n||| |"))
        self.assert_fault("edit D at residue 5 stands where the residue fits the unit", report, fasta)

    def test_insertion_to_the_left_of_the_only_seeds(self) -> None:
        # The additional C would fit if the repeat had grown to the right here, but TGC is no whole copy.
        entry = """\
 tetranucleotide         2 :        16 |     15 bp |     14 BP |      8 pt |  92.857 % |   0 mis |   1 ins |   0 del |   0 N |  unit ATGC
Missense: (3,I),
TGCCATGCATGCATG
|| ||||||||||||
TG-CATGCATGCATG
"""
        self.assert_true_report(*small_report("GTGCCATGCATGCATGG", entry, CHEAP_INDELS))

    def test_score_of_minus_one(self) -> None:
        # G for A costs 2, the C after it earns 1; the preference for longer repeats keeps it.
        self.assert_true_report(*small_report("ACGCT", SCORE_OF_MINUS_ONE, *LENIENT))


SCORE_OF_MINUS_ONE = """\
    dinucleotide         1 :         4 |      4 bp |      4 BP |     -1 pt |  75.000 % |   1 mis |   0 ins |   0 del |   0 N |  unit AC
Missense: (3,M),
ACGC
|| |
ACAC
"""
EXACT_SHORT = [
    ("imperfect repeats", "exact repeats"),
    ("#    Recursion depth:                      5\n#    Maximum score reduction:              -\n", ""),
    ("#    Mismatch score:                       -5\n#    Indel score:                          -5\n", ""),
    ("extended vorlan format", "vorlan format"),
    ("# Column  8: Number of mismatches\n# Column  9: Number of insertions\n# Column 10: Number of deletions\n"
     "# Column 11: Number of N's\n# Column 12", "# Column  8"),
]
CHEAP_INDELS = ("Indel score:                          -5", "Indel score:                          -2")
EXTENDED_SEEDS = ("imperfect repeats", "exact repeats which are extended to imperfect repeats")
LENIENT = [
    ("maximum (6, 0+1*unitlength )", "maximum (-9, 0+-1*unitlength )"),
    ("maximum (0, 0+0*unitlength )", "maximum (2, 0+0*unitlength )"),
    ("Mismatch score:                       -5", "Mismatch score:                       -2"),
    ("satellites: yes", "satellites: no"),
]


class WrongNumbers(ReportTest):
    """Each of these changes one number or one word of the entry line and nothing else."""

    def assert_detected(self, old: str, new: str, fault: str) -> None:
        self.assert_fault(fault, changed(REPORT, (old, new)))

    def test_start(self) -> None:
        self.assert_detected("   4 :        43", "   5 :        43", "left flank is GGT, must be GTA")

    def test_start_outside_the_record(self) -> None:
        self.assert_detected("48 :        59", "48 :        62", "lies at 48 to 62, the record has 61 bases")

    def test_end(self) -> None:
        self.assert_detected(":        43", ":        44", "does not show bases 4 to 44")

    def test_bp(self) -> None:
        self.assert_detected("40 bp", "41 bp", "bp is 41, must be 40")

    def test_normalised_length(self) -> None:
        self.assert_detected("40 BP", "39 BP", "BP is 39, must be 40")

    def test_score(self) -> None:
        self.assert_detected("19 pt", "21 pt", "score is 21, must be 19")

    def test_perfection(self) -> None:
        self.assert_detected(" 87.500", " 87.501", "perfection is 87.501, must be 87.500")

    def test_mismatches(self) -> None:
        self.assert_detected("1 mis", "2 mis", "number of mismatches is 2, must be 1")

    def test_insertions(self) -> None:
        self.assert_detected("1 ins", "0 ins", "number of insertions is 0, must be 1")

    def test_deletions(self) -> None:
        self.assert_detected("1 del", "0 del", "number of deletions is 0, must be 1")

    def test_ns(self) -> None:
        self.assert_detected("2 N", "3 N", "number of Ns is 3, must be 2")

    def test_unit_not_in_normal_form(self) -> None:
        self.assert_detected("unit AAG", "unit AGA", "unit is AGA, must be AAG")

    def test_unit_of_the_wrong_strand(self) -> None:
        self.assert_detected("unit AAG", "unit CTT", "unit is CTT, must be AAG")

    def test_unit_as_found_that_is_no_rotation(self) -> None:
        as_found = ("alphabetical normal form using reverse complement", "as they are")
        self.assert_fault("unit is AAG, no rotation of CTT", changed(REPORT, as_found))

    def test_unit_with_an_n(self) -> None:
        self.assert_detected("unit AAG", "unit ANG", "unit 'ANG' is no stretch of bases")

    def test_unit_longer_than_the_repeat(self) -> None:
        self.assert_detected("unit AAG", "unit AAGAAGAAGAAGC", "the alignment is shorter than one unit")

    def test_unit_of_two_copies(self) -> None:
        self.assert_detected("unit AC", "unit ACAC", "unit ACAC is a repetition of a shorter unit")

    def test_label(self) -> None:
        self.assert_detected(" dinucleotide", "trinucleotide", "label is trinucleotide, the unit has 2 bases")

    def test_padding(self) -> None:
        self.assert_detected("19 pt", " 19 pt", "layout of the entry")


class WrongEventsAndLines(ReportTest):
    """Faults of the list of events, the alignment lines and the flanks."""

    def assert_detected(self, old: str, new: str, fault: str) -> None:
        self.assert_fault(fault, changed(REPORT, (old, new)))

    def test_kind_of_an_event(self) -> None:
        self.assert_detected("(19,I)", "(19,M)", "list of events")

    def test_position_of_an_event(self) -> None:
        self.assert_detected("(28,D)", "(27,D)", "list of events")

    def test_missing_event(self) -> None:
        self.assert_detected("(11,M),", "", "list of events")

    def test_missing_last_comma(self) -> None:
        self.assert_detected("(28,D),", "(28,D)", "list of events")

    def test_event_of_a_perfect_repeat(self) -> None:
        self.assert_detected("Missense: \n", "Missense: (1,M),\n", "list of events")

    def test_left_flank(self) -> None:
        self.assert_detected("GGT:", "GCT:", "left flank is GCT, must be GGT")

    def test_right_flank(self) -> None:
        self.assert_detected(":GTT", ":GTA", "right flank is GTA, must be GTT")

    def test_flank_beyond_the_end(self) -> None:
        true_lines = ":GA\n    ||||||||||||   \n    CTTCTTCTTCTT   \n"
        longer_lines = ":GAN\n    ||||||||||||    \n    CTTCTTCTTCTT    \n"
        self.assert_detected(true_lines, longer_lines, "right flank is GAN, must be GA")

    def test_base_that_is_not_in_the_input(self) -> None:
        self.assert_detected("CTCACACACG", "CGCACACACG", "does not show bases 4 to 43")

    def test_base_of_the_unit_line(self) -> None:
        self.assert_detected("ACACAC-ACAC", "ACAGAC-ACAC",
                             "column 16 of the alignment shows '|' where the bases differ")

    def test_unit_line_out_of_period(self) -> None:
        # The base that faces T is free for the match line, but not for the period.
        self.assert_detected("    ACACACACACACACACAC-", "    ACACACACACGCACACAC-", "does not repeat after 2 bases")

    def test_match_shown_as_edit(self) -> None:
        self.assert_detected("|||||||**||||", "||| |||**||||", "shows an edit where the bases are equal")

    def test_bridged_n_shown_as_match(self) -> None:
        self.assert_detected("**", "*|", "shows '|' where the bases differ")

    def test_bridged_n_shown_as_edit(self) -> None:
        self.assert_detected("**", "* ", "never edited")

    def test_star_at_a_base(self) -> None:
        self.assert_detected("|||||||**||||", "||||||***||||", "shows '*' at a base that is not N")

    def test_unknown_sign(self) -> None:
        self.assert_detected("|||||||**||||", "|||||||**|||x", "holds a character that cannot stand there")

    def test_match_at_a_gap(self) -> None:
        self.assert_detected("|||||||| |||||||**", "||||||||||||||||**", "shows '|' at a gap")

    def test_additional_colon(self) -> None:
        self.assert_detected(":GTT", ":G:T", "does not consist of left flank, repeat and right flank")

    def test_lines_of_unequal_length(self) -> None:
        self.assert_detected("    CTTCTTCTTCTT   \n", "    CTTCTTCTTCTT\n", "the alignment lines differ in length")

    def test_letters_beside_the_unit_line(self) -> None:
        self.assert_detected("    CTTCTTCTTCTT   \n", "    CTTCTTCTTCTT GA\n", "not blank beside the repeat")


class WrongSelection(ReportTest):
    """The header states settings under which the repeats could not have been reported as they are."""

    def assert_detected(self, old: str, new: str, fault: str) -> None:
        self.assert_fault(fault, changed(REPORT, (old, new)))

    def test_score_threshold(self) -> None:
        self.assert_detected("maximum (6, 0+1*", "maximum (10, 0+1*", "score 9 is below 10")

    def test_score_threshold_by_unit_length(self) -> None:
        # 3 * 3.1 is rounded up; the repeat of AC needs only 7.
        self.assert_detected("maximum (6, 0+1*", "maximum (6, 0+3.1*", "score 9 is below 10")

    def test_length_threshold(self) -> None:
        self.assert_detected("maximum (0, 0+0*", "maximum (0, 1+4*", "BP 12 is below 13")

    def test_minimum_perfection(self) -> None:
        self.assert_detected("0 % - 100 %", "87.6 % - 100 %", "perfection 87.5 is below")

    def test_maximum_perfection(self) -> None:
        self.assert_detected("0 % - 100 %", "0 % - 99 %", "perfection 100.0 is above")

    def test_unit_length_range(self) -> None:
        self.assert_detected("Maximum unit length:                  10", "Maximum unit length:                  2",
                             "unit length 3 lies outside 1 to 2")

    def test_limit_of_successive_ns(self) -> None:
        self.assert_detected("allowed:           2", "allowed:           1", "bridges more than 1 successive Ns")

    def test_no_ns_allowed(self) -> None:
        self.assert_detected("allowed:           2", "allowed:           0", "bridged Ns although N is a residue")

    def test_ns_as_mismatches(self) -> None:
        self.assert_fault("bridged Ns although N is a residue",
                          without_n_column(changed(REPORT, ("neutral", "missense"))))

    def test_mismatch_score(self) -> None:
        self.assert_detected("Mismatch score:                       -5", "Mismatch score:                       -4",
                             "score is 19, must be 20")

    def test_indel_score(self) -> None:
        self.assert_detected("Indel score:                          -5", "Indel score:                          -4",
                             "score is 19, must be 21")

    def test_flank_setting(self) -> None:
        self.assert_detected("nucletides:        3", "nucletides:        4", "left flank is TTG, must be GTTG")

    def test_score_reduction(self) -> None:
        # From 8 the mismatch leads to 3; with a reduction of 4 it must stay above 8 - 4 - 1.
        self.assert_detected("reduction:              -", "reduction:              4", "lets the score fall to")
        self.assert_true_report(changed(REPORT, ("reduction:              -", "reduction:              5")))

    def test_edits_in_an_exact_search(self) -> None:
        report = changed(REPORT, *EXACT_SHORT[:3])
        self.assert_fault("holds edits although only perfect repeats were searched for", report)


class ImpossibleGrowth(ReportTest):
    """Alignments whose numbers agree but that no extension can have led to."""

    def test_repeat_that_stops_too_early(self) -> None:
        entry = """\
   trinucleotide         2 :        10 |      9 bp |      9 BP |      6 pt | 100.000 % |   0 mis |   0 ins |   0 del |   0 N |  unit AAG
Missense: 
CTTCTTCTT
|||||||||
CTTCTTCTT
"""
        self.assert_true_report(*small_report("GCTTCTTCTTGA", entry))
        self.assert_only_fault("goes on perfectly to the right", *small_report("GCTTCTTCTTCA", entry))
        self.assert_only_fault("goes on perfectly to the left", *small_report("TCTTCTTCTTGA", entry))
        self.assert_only_fault("goes on perfectly to the right", *small_report("GCTTCTTCTTNNTA", entry))
        self.assert_true_report(*small_report("GCTTCTTCTTNNNCA", entry))

    def test_edit_where_the_residue_fits(self) -> None:
        # Two bases of the unit are skipped although the next residue is the expected A.
        entry = """\
    dinucleotide         2 :        17 |     16 bp |     18 BP |     10 pt |  88.889 % |   0 mis |   0 ins |   2 del |   0 N |  unit AC
Missense: (9,D),(9,D),
ACACACAC--ACACACAC
||||||||  ||||||||
ACACACACACACACACAC
"""
        report = small_report("GACACACACACACACACG", entry, CHEAP_INDELS)
        self.assert_fault("stands where the residue fits the unit", *report)

    def test_end_that_is_worse_than_an_earlier_state(self) -> None:
        entry = """\
    dinucleotide         2 :        13 |     12 bp |     12 BP |      {score} pt |  91.667 % |   1 mis |   0 ins |   0 del |   0 N |  unit AC
Missense: (9,M),
ACACACACGCAC
|||||||| |||
ACACACACACAC
"""
        # 6 before the edit and 3 matches after it: a penalty of 3 makes good for it, a penalty of 4 does not.
        three = ("Mismatch score:                       -5", "Mismatch score:                       -3")
        four = ("Mismatch score:                       -5", "Mismatch score:                       -4")
        shorter = ("equal score:  no", "equal score:  yes")
        lower = ("maximum (6,", "maximum (4,")
        residues = "GACACACACGCACG"
        self.assert_true_report(*small_report(residues, entry.format(score=6), three))
        self.assert_only_fault("the right end scores 6, which is no better than 6",
                               *small_report(residues, entry.format(score=6), three, shorter))
        self.assert_only_fault("the right end scores 5, which is no better than 6",
                               *small_report(residues, entry.format(score=5), four, lower, EXTENDED_SEEDS))
        # From the third copy the score goes 2, -2, 1 and the search gives up there, before it turns to the left.
        self.assert_true_report(*small_report(residues, entry.format(score=5), four, lower))

    def test_end_below_the_best_where_edits_were_given_up(self) -> None:
        # After the edit the score is -1: one more edit would lead below -3, so the search gives up and keeps it.
        # At the end of the record, before an N run, or where another edit is cheap enough, it would not.
        self.assert_true_report(*small_report("ACGCT", SCORE_OF_MINUS_ONE, *LENIENT))
        fault = "the right end scores -1, which is no better than 0"
        self.assert_only_fault(fault, *small_report("ACGC", SCORE_OF_MINUS_ONE, *LENIENT))
        self.assert_only_fault(fault, *small_report("ACGCNNNT", SCORE_OF_MINUS_ONE, *LENIENT))
        self.assert_true_report(*small_report("ACGCNNT", SCORE_OF_MINUS_ONE, *LENIENT))

    def test_end_in_an_edit(self) -> None:
        entry = """\
    dinucleotide         2 :        13 |     12 bp |     12 BP |      7 pt |  91.667 % |   1 mis |   0 ins |   0 del |   0 N |  unit AC
Missense: (12,M),
ACACACACACAG
||||||||||| 
ACACACACACAC
"""
        report = small_report("GACACACACACAGG", entry, ("Mismatch score:                       -5",
                                                        "Mismatch score:                       -2"))
        self.assert_fault("begins or ends with an N or an edit", *report)

    def test_end_in_a_bridged_n(self) -> None:
        entry = """\
    dinucleotide         2 :        10 |      9 bp |      9 BP |      6 pt |  88.889 % |   0 mis |   0 ins |   0 del |   1 N |  unit AC
Missense: 
ACACACACN
||||||||*
ACACACACA
"""
        self.assert_only_fault("begins or ends with an N or an edit", *small_report("GACACACACNGG", entry))

    def test_no_copy_that_can_be_the_seed(self) -> None:
        # The only whole copy of ACT ends at the last base, which a seed must leave free.
        entry = """\
   trinucleotide         2 :         8 |      7 bp |      7 BP |      {score} pt |  85.714 % |   1 mis |   0 ins |   0 del |   0 N |  unit ACT
Missense: (3,M),
CTGCTAC
|| ||||
CTACTAC
"""
        as_found = ("alphabetical normal form using reverse complement", "as they are")
        six = ("maximum (6, 0+1*", "maximum (1, 0+0*")
        two = ("Mismatch score:                       -5", "Mismatch score:                       -2")
        length = ("maximum (0, 0+0*", "maximum (2, 0+0*")
        report = small_report("GCTGCTACG", entry.format(score=1), as_found, six, two, length)
        self.assert_only_fault("no whole copy of the unit can be the seed", *report)

    def test_seed_below_the_seed_score(self) -> None:
        # Perfect stretches of 5 and 5 bases: enough to start from anywhere, too few for a perfect seed.
        entry = """\
    dinucleotide         2 :        12 |     11 bp |     11 BP |      6 pt |  90.909 % |   1 mis |   0 ins |   0 del |   0 N |  unit AC
Missense: (6,M),
ACACAGACACA
||||| |||||
ACACACACACA
"""
        two = ("Mismatch score:                       -5", "Mismatch score:                       -2")
        self.assert_true_report(*small_report("TACACAGACACAT", entry, two))
        self.assert_only_fault("its perfect stretches score 3, a seed needs 4",
                               *small_report("TACACAGACACAT", entry, two, EXTENDED_SEEDS))


class WrongOrder(ReportTest):

    def test_order_by_start(self) -> None:
        report = HEADER + FIRST_RECORD + PERFECT + DIVERGED + SECOND_RECORD + END
        self.assert_only_fault("must stand before the repeat above it", report)

    def test_same_repeat_twice(self) -> None:
        report = HEADER + FIRST_RECORD + DIVERGED + PERFECT + PERFECT + SECOND_RECORD + END
        self.assert_only_fault("repeat 3 (48 : 59): mostly overlaps with repeat 2", report)
        self.assert_true_report(changed(report, ("satellites: yes", "satellites: no")))

    def test_one_unit_must_lie_outside_the_overlap(self) -> None:
        a = spanning(100, 160, "AC")
        self.assertFalse(mostly_overlap(a, spanning(150, 190, "AAC")))
        self.assertTrue(mostly_overlap(a, spanning(110, 150, "AAAC")))
        # 50 bases in common: the second needs 54 for its unit of 4, the first has 60 of the 52 that it needs.
        self.assertFalse(mostly_overlap(a, spanning(110, 164, "AAAC")))
        self.assertTrue(mostly_overlap(a, spanning(110, 163, "AAAC")))
        self.assertTrue(mostly_overlap(spanning(100, 161, "A" * 11 + "C"), spanning(110, 170, "AC")))
        self.assertFalse(mostly_overlap(a, spanning(160, 163, "AAC")))

    def test_equal_spans_go_by_unit_length(self) -> None:
        short, long = spanning(0, 12, "AC"), spanning(0, 12, "AAC")
        imperfect, extend = Settings(), Settings(mode=EXTEND_EXACT)
        self.assertEqual([], order_faults(short, long, imperfect))
        self.assertEqual(1, len(order_faults(long, short, imperfect)))
        self.assertEqual([], order_faults(long, short, extend))


def spanning(left: int, right: int, unit: str) -> ReportedRepeat:
    """A repeat of which only the span and the unit matter."""
    return ReportedRepeat("", "", left + 1, right, right - left, right - left, 0, "", unit, [], None, [])


class WrongFrame(ReportTest):
    """Faults of the lines around the repeats."""

    def assert_detected(self, old: str, new: str, fault: str) -> None:
        self.assert_only_fault(fault, changed(REPORT, (old, new)))

    def test_record_header(self) -> None:
        self.assert_detected(">demo one", ">demo", "the header of the record is '>demo', must be '>demo one'")

    def test_record_length(self) -> None:
        self.assert_detected("length: 61", "length: 62", "the length of the record is")

    def test_closing_line_of_a_record(self) -> None:
        self.assert_detected('"demo one"', '"demo"', "neither a repeat nor the closing line")

    def test_missing_record(self) -> None:
        self.assert_detected('>plain\nsequence length: 4\n# Analysis of sequence "plain" completed.\n', "",
                             "the header of the record is '## Finished")

    def test_closing_line(self) -> None:
        self.assert_detected("## Finished successfully. ##\n", "", "end of the report")

    def test_missing_last_line_end(self) -> None:
        self.assert_detected("successfully. ##\n", "successfully. ##", "end of the report")

    def test_more_after_the_closing_line(self) -> None:
        self.assert_detected("successfully. ##\n", "successfully. ##\n\n", "end of the report")

    def test_report_that_breaks_off(self) -> None:
        self.assert_fault("the report ends where an alignment line is due", REPORT[:REPORT.index("    CTTCTT")])

    def test_legend(self) -> None:
        with self.assertRaisesRegex(ReportError, "column 8 of the legend"):
            self.findings(changed(REPORT, ("Number of mismatches", "Mismatches")))

    def test_setting_without_its_padding(self) -> None:
        with self.assertRaisesRegex(ReportError, "Recursion depth"):
            self.findings(changed(REPORT, ("Recursion depth: ", "Recursion depth:")))

    def test_format_that_is_not_checked(self) -> None:
        with self.assertRaisesRegex(ReportError, "Output format"):
            self.findings(changed(REPORT, ("extended vorlan format", "fasta format")))


class Parts(unittest.TestCase):
    """The small rules on which the check stands."""

    def test_normal_forms(self) -> None:
        forms = [(normal_form(unit, ALPHABETICAL), normal_form(unit, ALPHABETICAL_BOTH_STRANDS))
                 for unit in ("CA", "TG", "GA", "CTT", "T", "G")]
        self.assertEqual([("AC", "AC"), ("GT", "AC"), ("AG", "AG"), ("CTT", "AAG"), ("T", "A"), ("G", "C")], forms)

    def test_primitive_units(self) -> None:
        self.assertEqual(["A", "AC", "AACAAT"],
                         [u for u in ("A", "AA", "AC", "ACAC", "AACAAC", "AACAAT", "ATATAT") if is_primitive(u)])

    def test_longest_n_run(self) -> None:
        self.assertEqual([0, 1, 3], [longest_n_run(text) for text in ("ACA", "ANCN", "NANNNCNN")])

    def test_thresholds_in_single_precision(self) -> None:
        # The float nearest to 1.1 is a little larger, and ten times it is rounded to 11 exactly.
        self.assertEqual(11, Rule(6, 0, bounds_of("1.1", True)).at(10))
        self.assertEqual([2, 3, 5, 6], [Rule(0, 0, Bounds(1.5, 1.5)).at(u) for u in (1, 2, 3, 4)])

    def test_thresholds_that_do_not_fit(self) -> None:
        self.assertEqual(2147483647, Rule(6, 0, bounds_of("inf", True)).at(3))
        self.assertEqual(6, Rule(6, 0, bounds_of("-1e+30", True)).at(3))
        self.assertEqual(6, Rule(6, 0, bounds_of("nan", True)).at(3))

    def test_float_of_more_than_six_digits(self) -> None:
        bounds = bounds_of("87.6543", False)
        self.assertLess(bounds.low, 87.65426)
        self.assertGreater(bounds.high, 87.65434)

    def test_too_little_seen(self) -> None:
        self.assertEqual(["no case was run"], coverage_faults(0, 0, {}))
        self.assertIn("too few repeats", coverage_faults(10, 5, {})[0])
        self.assertEqual([], coverage_faults(10, 100, {}))

    def test_random_cases_come_again(self) -> None:
        self.assertEqual(random_case("7/1"), random_case("7/1"))
        self.assertNotEqual(random_case("7/1"), random_case("7/2"))


class FastaReader(unittest.TestCase):

    def assert_read(self, data: bytes, records: list[tuple[str, str]], well_formed: bool = True) -> None:
        self.assertEqual(([Record(*record) for record in records], well_formed), read_fasta(data))

    def test_spelling_of_residues(self) -> None:
        self.assert_read(b">seq1 Homo sapiens  chr 1\nacgtRYn\nUU-*x\n", [("seq1 Homo sapiens  chr 1", "ACGTNNNTTN")])

    def test_preamble(self) -> None:
        self.assert_read(b"\n\n# comment\n#another\n  >s\nAC GT\n\tAC\n", [("s", "ACGTAC")])

    def test_line_ends(self) -> None:
        self.assert_read(b">a\r\nAC\rGT\n\n>b\rT", [("a", "ACGT"), ("b", "T")])

    def test_header_alone(self) -> None:
        self.assert_read(b">only-header", [("only-header", "")])
        self.assert_read(b">a\nAC\n>", [("a", "AC"), ("", "")])

    def test_malformed(self) -> None:
        for data in (b"", b" \n# c\n", b"ACGT\n", b"# >s\nAC\n"):
            self.assert_read(data, [], False)
        self.assert_read(b">a\nAC\n>b\nAC1\n", [("a", "AC")], False)
        self.assert_read(b">a\nAC\n  >b\nAC\n", [], False)
        self.assert_read(b">a\nAC\n#c\n", [], False)

    def test_bad_last_byte_only_ends_the_file(self) -> None:
        self.assert_read(b">a\nAC1", [("a", "AC")])


if __name__ == "__main__":
    unittest.main()
