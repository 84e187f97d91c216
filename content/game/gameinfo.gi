// Game information of the content shipped with the editor.
"GameInfo"
{
	game	"Zol"
	"Brakel"
	{
		"fgd_files"
		{
			// zol_particles.fgd includes zol_base.fgd itself.
			fgd	"zol/zol_particles.fgd"
		}
		// Pulse hooks whose values particle systems can bind their variables to.
		"pulse_bindings"
		{
			file	"zol/zol_particle_domains.fgd"
		}
		// Node descriptions of Pulse documents beyond the runtime's own: the domain's events.
		"pulse_node_descriptions"
		{
			file	"pulse/pulse_base_events.fgd"
		}
	}
}
