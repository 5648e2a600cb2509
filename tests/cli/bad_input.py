# SPDX-License-Identifier: GPL-3.0-or-later
"""Damaged stores, hostile names and failing disks: a clear message or silence, never a lost byte."""
from world import World
