#pragma once
// The members of the records that travel as bytes (byte_image.h), each list once. A member that is
// missing here is lost in a crash; the test of the state image looks for gaps.

#include "core/data_set.h"
#include "core/undo.h"

#include <concepts>
#include <type_traits>

namespace nmr {

/// The record, const or not.
template <class T, class Record>
concept Is = std::same_as<std::remove_const_t<T>, Record>;

template <class Visit, Is<BasePointEntry> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Point, r.Value);
}

template <class Visit, Is<PeakEntry> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Point, r.Height, r.Amplitude, r.Position, r.Kind);
}

template <class Visit, Is<IntegralEntry> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Start, r.StartPoint, r.End, r.EndPoint, r.Flag, r.B0, r.B1, r.Value, r.Label);
}

template <class Visit, Is<RegionColor> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Color, r.Start, r.End);
}

template <class Visit, Is<FontRec> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Name, r.Size, r.Bold, r.Italic, r.CharSet, r.Underline, r.Strike, r.Color);
}

template <class Visit, Is<MultiViewEntry> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.FrameLeft, r.FrameTop, r.FrameRight, r.FrameBottom, r.ShownLeft, r.ShownRight, r.ShownTop, r.ShownBottom,
          r.MagnifyX, r.MagnifyY, r.Offset, r.FontAxis, r.FontPeakPosition, r.FontPeakNumber, r.FontIntegral, r.Words,
          r.Values, r.Labels);
}

template <class Visit, Is<CarriedSection> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Label, r.Address, r.Bytes);
}

template <class Visit, Is<SimPeak> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.Height, r.Width, r.Position, r.GaussRatio, r.Fix);
}

template <class Visit, Is<VendorWindow> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.shape, r.broadening_hz, r.gauss_hz, r.center_percent, r.start_percent, r.end_percent, r.trapezoid_percent);
}

template <class Visit, Is<VendorPhase> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.phase0_deg, r.phase1_deg, r.delay_points);
}

template <class Visit, Is<VendorProcessing> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.points, r.window, r.phase);
}

template <class Visit, Is<ParamBlock> T>
void EachMember(Visit& visit, T& r)
{
    visit(r.SlotNumber, r.SubKind, r.DataKind, r.DTYPE, r.OrgFile, r.FileName, r.Flag20, r.ADBIT, r.ExpComment2,
          r.IfGain, r.AcqMode, r.FFTMode, r.ACQTM, r.BF1, r.BF2, r.GF, r.WinStart1, r.WinEnd2, r.WinStart2, r.WinStart3,
          r.WinEnd3, r.WinStart4, r.WinEnd4, r.WinFlags, r.CLFRQ, r.CLPNT, r.ClockSpan, r.CLRSO, r.ExpTitle, r.COMNT,
          r.CSPED, r.CTEMP, r.RowBase, r.DATIM, r.DELAY, r.DEADT, r.DataFormat, r.DUMMY, r.Limit164, r.EXMOD, r.EXPCM,
          r.FlagA, r.FIDPoints, r.FIDPointsRaw, r.FilterType, r.FILTR, r.FREQU, r.GradProg, r.FlagB, r.IRFRQ,
          r.Instrument, r.BaseValue, r.INTVL, r.SpanOrg, r.IRATN, r.IRFIN, r.IRFN2, r.IRTitle, r.IRNUC, r.IrrFlag,
          r.IRPHS, r.IRRPW, r.IRSET, r.IRST2, r.IWT, r.DateSerial, r.TimeOfDay, r.JCNST, r.FlagCtoK, r.LOOP, r.FlagL,
          r.ObsCenter, r.OBFRQ0PPM, r.OBFRQ0PPMRead, r.OBATN, r.OBFIN, r.OBFN2, r.OBNUC, r.OBPHS, r.OBSET, r.OBST2,
          r.OBFRQ, r.PD, r.PI, r.POINT, r.FlagM, r.Probe, r.ProbeRange, r.ProbeSerial, r.PS, r.TempLimit1, r.TempLimit2,
          r.PulseProg, r.PW, r.SMEXR, r.RefX, r.SMTMS, r.RefState, r.FlagN, r.RESOL, r.Resolution2, r.FlagO, r.RGAIN,
          r.SMODE, r.SampleName, r.SampleId, r.SCANS, r.SampleMisc2, r.SampleMisc1, r.SLVNT, r.SpinFlag, r.SpinSet,
          r.Trap, r.FlagP, r.TempSet, r.Scan2, r.TIMES, r.TOSCN, r.RowCountCopy, r.TR, r.Span2, r.TRATN, r.TRFIN,
          r.TRFN2, r.TRFRQ, r.TRNUC, r.TrPulse, r.TRPHS, r.TRRPW, r.TrFlag, r.TRSET, r.TRST2, r.ExtraA, r.ExtraB,
          r.ProcLimit, r.ProcFlag, r.Operator, r.InstrumentID, r.DataVersion, r.DataMax, r.DataMin, r.YFill, r.DispBase,
          r.PrintLeftMargin, r.PrintTopMargin, r.YMag, r.YOffset, r.DispLeft, r.DispRight, r.DataChanged,
          r.DataFromFile, r.FIDShift, r.WindowFunc, r.PhaseP0, r.BaseLineDone, r.PhaseFlag, r.PeakDigits, r.PhaseWord1,
          r.PhaseWord2, r.PhaseWord3, r.PhaseWord4to5, r.PhaseWord6, r.PhaseWord7to13, r.TimeStamp2, r.GroupDelay,
          r.FileRefMHz);
}

// A data set by sections (state_image.h); points and axis are not among them.

template <class Visit, Is<DataSet> T>
void Parameters(Visit& visit, T& set)
{
    visit(set.par);
}
template <class Visit, Is<DataSet> T>
void Processing(Visit& visit, T& set)
{
    visit(set.FFTUser, set.HistoryHead2, set.HistoryA, set.HistoryB, set.ProcMark1, set.ProcMark2, set.LPBackwardUsed,
          set.LPStartUsed, set.LPPointUsed, set.LPOrderUsed);
}
template <class Visit, Is<DataSet> T>
void Rows(Visit& visit, T& set)
{
    visit(set.RowCount, set.RowValueA, set.RowValueB, set.RowHeading, set.RowMode, set.RowParamName, set.RowParamUnit,
          set.RowMin, set.RowMax, set.RowWord, set.PhaseTableA, set.PhaseTableB, set.PhaseTableC, set.PhaseTableD);
}
template <class Visit, Is<DataSet> T>
void Integrals(Visit& visit, T& set)
{
    visit(set.Integrals, set.IntegralRef, set.IntegralScale, set.IntegralAux, set.IntegralOffset, set.IntegralDigits);
}
template <class Visit, Is<DataSet> T>
void Peaks(Visit& visit, T& set)
{
    visit(set.Peaks, set.PeakFlags, set.PeakThreshold, set.PeakNoise, set.PeakWidth);
}
template <class Visit, Is<DataSet> T>
void Look(Visit& visit, T& set)
{
    visit(set.FontMain, set.FontPeak, set.FontInt, set.Regions, set.MultiViews, set.XLabelPpm, set.XLabelHz,
          set.XLabelKHz);
}
template <class Visit, Is<DataSet> T>
void Simulation(Visit& visit, T& set)
{
    visit(set.SimFlag, set.SimWords, set.SimPeaks, set.SimComment);
}
template <class Visit, Is<DataSet> T>
void Carried(Visit& visit, T& set)
{
    visit(set.vendor, set.PrintWords, set.PrintValues, set.PrintTable, set.CommentRtf, set.CommentRtfPlain, set.Carried,
          set.Warnings);
}

template <class Visit, Is<DataSet> T>
void EachMember(Visit& visit, T& set)
{
    Parameters(visit, set);
    Processing(visit, set);
    Rows(visit, set);
    Integrals(visit, set);
    Peaks(visit, set);
    Look(visit, set);
    Simulation(visit, set);
    Carried(visit, set);
}

} // namespace nmr
