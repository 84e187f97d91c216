#include "tools/toolscene/widgets/qtoolscenewidget.h"

#include <QFileInfo>
#include <QFontInfo>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <typeinfo>

#include "core/logging/logging.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenecamera.h"
#include "tools/toolscene/toolscenenode.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

static void BuildToolSceneWidgetCommands( CBindTargetDescriptor<CQToolSceneWidget> &d )
{
	d.AddClickCommand( "DebugToolScene", []( CQToolSceneWidget *pWidget ) { pWidget->DebugToolScene(); } );
	d.AddClickCommand( "DefaultPreviewCamera", []( CQToolSceneWidget *pWidget ) { pWidget->ResetCamera( true, true ); } );
}

static CBindTargetDescriptor<CQToolSceneWidget> s_ToolSceneWidgetCommands( "ToolSceneWidget", "CQToolSceneWidget", &BuildToolSceneWidgetCommands );

const CBindTargetDescriptorBase *CQToolSceneWidget::GetBindTargetDescriptor() const
{
	return &s_ToolSceneWidgetCommands;
}

CQToolSceneWidget::CQToolSceneWidget( CToolScene *pScene, QWidget *pParent ) : QOpenGLWidget( pParent ), m_pScene( pScene )
{
	QSurfaceFormat format;
	format.setVersion( 3, 3 );
	format.setProfile( QSurfaceFormat::CoreProfile );
	format.setDepthBufferSize( 24 );
	setFormat( format );
	setMinimumSize( 160, 120 );
	setFocusPolicy( Qt::StrongFocus );
	setMouseTracking( false );

	m_pCameraNode = new CToolSceneCamera( m_pScene );
	m_Camera.ApplyTo( m_pCameraNode );

	// Overlays: indicators at the top right, the information text at the bottom left, the
	// message where the eye starts reading.
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 8, 8, 8, 8 );
	auto *pTop = new QHBoxLayout();
	pTop->addStretch( 1 );
	m_pIndicatorLayout = new QVBoxLayout();
	m_pIndicatorLayout->setSpacing( 2 );
	pTop->addLayout( m_pIndicatorLayout );
	pLayout->addLayout( pTop );
	pLayout->addStretch( 1 );
	m_pOverlayText = new QLabel( this );
	m_pOverlayText->setObjectName( "ToolSceneOverlayText" );
	m_pOverlayText->setStyleSheet( "color: #e8e8e8; font-family: monospace;" );
	m_pOverlayText->setAttribute( Qt::WA_TransparentForMouseEvents );
	pLayout->addWidget( m_pOverlayText, 0, Qt::AlignLeft | Qt::AlignBottom );
	m_pMessage = new QLabel( this );
	m_pMessage->setObjectName( "ToolSceneMessage" );
	m_pMessage->setAttribute( Qt::WA_TransparentForMouseEvents );
	m_pMessage->move( 30, 30 );
	m_pMessage->hide();
}

CQToolSceneWidget::~CQToolSceneWidget()
{
	OnAboutToDestroyContext();
	// The base class destroys the context after this part of the object is gone.
	if ( context() )
		disconnect( context(), &QOpenGLContext::aboutToBeDestroyed, this, &CQToolSceneWidget::OnAboutToDestroyContext );
	delete m_pCameraNode;
}

void CQToolSceneWidget::OnAboutToDestroyContext()
{
	if ( !m_Renderer.IsInitialized() || !context() )
		return;
	makeCurrent();
	m_Renderer.Shutdown();
	doneCurrent();
}

// ---------------------------------------------------------------------------------------
// The frame

void CQToolSceneWidget::Tick( float flRate )
{
	m_Camera.ApplyTo( m_pCameraNode );
	float flTime = m_Clock.Advance();
	if ( m_bSimulating && m_pScene )
	{
		ToolSceneView_t view = GetView();
		m_pScene->SetParticleCameras( { view.GetParticleCamera() } );
		m_pScene->Update( flTime, flRate );
		if ( m_Camera.IsFollowingScene() )
		{
			Vector vMin, vMax;
			bool bHave = m_pScene->GetBounds( &vMin, &vMax );
			m_Camera.FollowBounds( bHave, vMin, vMax );
			m_Camera.ApplyTo( m_pCameraNode );
		}
		m_bPaintRequested = true;
	}
	if ( m_bPaintRequested )
	{
		m_bPaintPending = true;
		m_bPaintRequested = false;
	}
	else if ( m_nPaintHoldCount == 0 && !m_bPaintPending )
		return;
	update();
}

void CQToolSceneWidget::ResetCamera( bool bClearOffset, bool bFollowScene )
{
	m_Camera.Reset( bClearOffset, bFollowScene );
	if ( bFollowScene && m_pScene )
	{
		Vector vMin, vMax;
		bool bHave = m_pScene->GetBounds( &vMin, &vMax );
		m_Camera.FollowBounds( bHave, vMin, vMax );
	}
	m_Camera.ApplyTo( m_pCameraNode );
	RequestPaint();
	update();
}

ToolSceneView_t CQToolSceneWidget::GetView() const
{
	const qreal flRatio = devicePixelRatioF();
	return m_pCameraNode->GetView( int( std::lround( width() * flRatio ) ), int( std::lround( height() * flRatio ) ) );
}

void CQToolSceneWidget::DebugToolScene()
{
	if ( !m_pScene )
		return;
	Msg( "Tool scene: %d nodes, time %.3f, step %.4f\n", m_pScene->GetNodeCount(), double( m_pScene->GetTime() ), double( m_pScene->GetFrameStep() ) );
	m_pScene->ForEachNode( []( const CToolSceneNode *pNode ) {
		Vector o = pNode->GetOrigin();
		Msg( "  %-32s at (%.1f %.1f %.1f)%s\n", typeid( *pNode ).name(), double( o.x ), double( o.y ), double( o.z ), pNode->IsEffectivelyVisible() ? "" : " hidden" );
	} );
}

// ---------------------------------------------------------------------------------------
// Drawing

void CQToolSceneWidget::initializeGL()
{
	connect( context(), &QOpenGLContext::aboutToBeDestroyed, this, &CQToolSceneWidget::OnAboutToDestroyContext, Qt::UniqueConnection );
	m_Renderer.Initialize( context() );
}

void CQToolSceneWidget::paintEvent( QPaintEvent *pEvent )
{
	// Without a context Qt draws nothing; say so once in the log and over the view, and go
	// on simulating.
	if ( !isValid() )
	{
		CToolSceneRenderer::ReportNoContext();
		if ( m_nNoContextIndicator < 0 )
		{
			m_nNoContextIndicator = AddOverlayIndicator( "No OpenGL 3.3 here: the view can't draw (the simulation runs)", "game:tools/images/common/generic_hud_warning.png" );
			SetOverlayIndicatorVisible( m_nNoContextIndicator, true );
		}
		m_bPaintPending = false;
		return;
	}
	QOpenGLWidget::paintEvent( pEvent );
}

void CQToolSceneWidget::paintGL()
{
	m_bPaintPending = false;
	if ( !m_Renderer.IsInitialized() || !m_pScene )
	{
		CToolSceneRenderer::ReportNoContext();
		return;
	}
	ToolSceneView_t view = GetView();
	m_pScene->BuildDrawList( m_DrawList, view );
	m_Renderer.Render( m_DrawList, view, defaultFramebufferObject() );
	++m_nPaintCount;
}

// ---------------------------------------------------------------------------------------
// Camera by mouse

ToolSceneView_t CQToolSceneWidget::GetSceneView() const
{
	return GetView();
}

bool CQToolSceneWidget::GetPointerPosition( float *pX, float *pY ) const
{
	QPoint pos;
	if ( !CQInputBindManager::Get()->GetPointerPosition( this, &pos ) )
		return false;
	// The picture has device pixels; events have logical ones.
	const qreal flRatio = devicePixelRatioF();
	*pX = float( std::lround( pos.x() * flRatio ) );
	*pY = float( std::lround( pos.y() * flRatio ) );
	return true;
}

void CQToolSceneWidget::RequestRedraw()
{
	RequestPaint();
	update();
}

void CQToolSceneWidget::keyPressEvent( QKeyEvent *pEvent )
{
	if ( m_fnKeyHandler && m_fnKeyHandler( pEvent ) )
	{
		pEvent->accept();
		return;
	}
	QOpenGLWidget::keyPressEvent( pEvent );
}

void CQToolSceneWidget::mousePressEvent( QMouseEvent *pEvent )
{
	m_LastMousePos = pEvent->pos();
	// A handle grabbed under the pointer keeps the camera still.
	if ( m_pPointerListener && m_pPointerListener->IsHoldingPointer() )
	{
		pEvent->accept();
		return;
	}
	if ( pEvent->button() == Qt::LeftButton )
		m_eDrag = ( pEvent->modifiers() & Qt::ShiftModifier ) ? DRAG_PAN : DRAG_ORBIT;
	else if ( pEvent->button() == Qt::MiddleButton )
		m_eDrag = DRAG_PAN;
	else if ( pEvent->button() == Qt::RightButton )
		m_eDrag = DRAG_ZOOM;
	else
	{
		QOpenGLWidget::mousePressEvent( pEvent );
		return;
	}
	pEvent->accept();
}

void CQToolSceneWidget::mouseMoveEvent( QMouseEvent *pEvent )
{
	QPoint delta = pEvent->pos() - m_LastMousePos;
	m_LastMousePos = pEvent->pos();
	switch ( m_eDrag )
	{
	case DRAG_ORBIT: m_Camera.Orbit( float( delta.x() ), float( delta.y() ) ); break;
	case DRAG_PAN: m_Camera.Pan( float( delta.x() ), float( delta.y() ), height() ); break;
	case DRAG_ZOOM: m_Camera.Zoom( float( -delta.y() ) * 0.05f ); break;
	case DRAG_NONE:
		if ( m_pPointerListener )
		{
			const qreal flRatio = devicePixelRatioF();
			m_pPointerListener->OnPointerMoved( float( std::lround( pEvent->x() * flRatio ) ), float( std::lround( pEvent->y() * flRatio ) ) );
		}
		QOpenGLWidget::mouseMoveEvent( pEvent );
		return;
	}
	m_Camera.ApplyTo( m_pCameraNode );
	RequestPaint();
	update();
	pEvent->accept();
}

void CQToolSceneWidget::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( m_eDrag == DRAG_NONE )
	{
		QOpenGLWidget::mouseReleaseEvent( pEvent );
		return;
	}
	m_eDrag = DRAG_NONE;
	pEvent->accept();
}

void CQToolSceneWidget::wheelEvent( QWheelEvent *pEvent )
{
	// One notch is 120 eighths of a degree: a step of zoom.
	m_Camera.Zoom( float( pEvent->angleDelta().y() ) / 120.0f );
	m_Camera.ApplyTo( m_pCameraNode );
	RequestPaint();
	update();
	pEvent->accept();
}

// ---------------------------------------------------------------------------------------
// Overlays

int CQToolSceneWidget::AddOverlayIndicator( const char *pText, const char *pIconPath )
{
	auto *pIndicator = new QWidget( this );
	pIndicator->setAttribute( Qt::WA_TransparentForMouseEvents );
	auto *pRow = new QHBoxLayout( pIndicator );
	pRow->setContentsMargins( 4, 2, 4, 2 );
	QString iconPath = QString::fromUtf8( pIconPath ? pIconPath : "" );
	if ( !iconPath.isEmpty() && QFileInfo::exists( iconPath ) )
	{
		auto *pIcon = new QLabel( pIndicator );
		pIcon->setPixmap( QPixmap( iconPath ).scaled( 16, 16, Qt::KeepAspectRatio, Qt::SmoothTransformation ) );
		pRow->addWidget( pIcon );
	}
	auto *pLabel = new QLabel( QString::fromUtf8( pText ), pIndicator );
	pLabel->setStyleSheet( "color: #ffd860;" );
	pRow->addWidget( pLabel );
	pIndicator->setStyleSheet( "background: rgba( 0, 0, 0, 120 );" );
	pIndicator->hide();
	m_pIndicatorLayout->addWidget( pIndicator, 0, Qt::AlignRight );
	m_Indicators.push_back( pIndicator );
	return int( m_Indicators.size() ) - 1;
}

void CQToolSceneWidget::SetOverlayIndicatorVisible( int nIndicator, bool bVisible )
{
	if ( nIndicator >= 0 && nIndicator < int( m_Indicators.size() ) )
		m_Indicators[ size_t( nIndicator ) ]->setVisible( bVisible );
}

bool CQToolSceneWidget::IsOverlayIndicatorVisible( int nIndicator ) const
{
	return nIndicator >= 0 && nIndicator < int( m_Indicators.size() ) && !m_Indicators[ size_t( nIndicator ) ]->isHidden();
}

void CQToolSceneWidget::ClearOverlayIndicators()
{
	for ( QWidget *pIndicator : m_Indicators )
		delete pIndicator;
	m_Indicators.clear();
	m_nNoContextIndicator = -1;
}

void CQToolSceneWidget::SetOverlayText( const QString &text )
{
	if ( m_pOverlayText->text() != text )
	{
		m_pOverlayText->setText( text );
		FitOverlayText();
	}
	m_pOverlayText->setVisible( !text.isEmpty() );
}

void CQToolSceneWidget::FitOverlayText()
{
	// The counts are columns of a fixed-width text: in a narrow view the text gets smaller
	// rather than losing its last column to the view's edge.
	QFont font( "monospace" );
	font.setStyleHint( QFont::TypeWriter );
	const int nNaturalPixels = QFontInfo( font ).pixelSize();
	int nWidest = 0;
	const QFontMetrics metrics( font );
	for ( const QString &line : m_pOverlayText->text().split( '\n' ) )
		nWidest = std::max( nWidest, metrics.horizontalAdvance( line ) );
	const int nRoom = width() - 16;
	int nPixels = nNaturalPixels;
	if ( nWidest > 0 && nRoom > 0 && nWidest > nRoom )
		nPixels = std::max( 6, nNaturalPixels * nRoom / nWidest );
	if ( nPixels == m_nOverlayTextPixels )
		return;
	m_nOverlayTextPixels = nPixels;
	m_pOverlayText->setStyleSheet( QString( "color: #e8e8e8; font-family: monospace; font-size: %1px;" ).arg( nPixels ) );
}

void CQToolSceneWidget::resizeEvent( QResizeEvent *pEvent )
{
	QOpenGLWidget::resizeEvent( pEvent );
	FitOverlayText();
}

QString CQToolSceneWidget::GetOverlayText() const
{
	return m_pOverlayText->text();
}

void CQToolSceneWidget::SetMessage( const QString &text, const QColor &color )
{
	m_pMessage->setText( text );
	m_pMessage->setStyleSheet( QString( "color: %1;" ).arg( color.name() ) );
	m_pMessage->adjustSize();
	m_pMessage->setVisible( !text.isEmpty() );
}

QString CQToolSceneWidget::GetMessage() const
{
	return m_pMessage->isHidden() ? QString() : m_pMessage->text();
}
